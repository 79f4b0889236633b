#include <cstdint>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using TESTING::error_entry;
using TESTING::host;
using testing::IsEmpty;

std::string router_advertisement() {
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    return packet;
}

/// What a careless host may hand over. Nothing of it reaches a file.
class guards : public TESTING::scratch_test {
  protected:
    void SetUp() override { ASSERT_EQ(host_.init_with_fake_tshark("profile.json"), 0); }
    void TearDown() override { EXPECT_THAT(TESTING::names_in("."), IsEmpty()); }

    std::int32_t data(const kivra_trace_chunk& chunk) {
        return host_.exports.data(host_.context, &chunk, nullptr, nullptr, nullptr, nullptr);
    }

    host host_;
};

TEST_F(guards, let_every_export_live_without_context_and_callback) {
    const kivra_trace_chunk chunk{};
    EXPECT_EQ(host_.exports.init_parameters(nullptr, nullptr), 0);
    EXPECT_EQ(host_.exports.version(nullptr, nullptr), 0);
    EXPECT_EQ(host_.exports.init(nullptr, nullptr), 1);
    EXPECT_EQ(host_.exports.data(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 100);
    EXPECT_EQ(host_.exports.data(nullptr, &chunk, nullptr, nullptr, nullptr, nullptr), 100);
    EXPECT_EQ(host_.exports.complete(nullptr), 0);
    EXPECT_EQ(host_.exports.cancel(nullptr), 0);
    host_.exports.get_last_error(nullptr, nullptr, nullptr);
    EXPECT_EQ(host_.exports.release(nullptr), 0);
}

TEST_F(guards, let_a_prefix_live_without_callback) {
    const std::string packet = router_advertisement();
    kivra_trace_chunk chunk{};
    chunk.format = "ip";
    chunk.data = reinterpret_cast<const std::uint8_t*>(packet.data());
    chunk.size = static_cast<std::uint32_t>(packet.size());
    EXPECT_EQ(data(chunk), 0);
    EXPECT_EQ(host_.last_error(), error_entry("", 0U));
}

TEST_F(guards, refuse_an_ip_record_with_a_size_but_no_data) {
    kivra_trace_chunk chunk{};
    chunk.format = "ip";
    chunk.size = 88;
    EXPECT_EQ(data(chunk), 100);
    EXPECT_EQ(host_.last_error(), error_entry("record has a size but no data", 100U));
    chunk.size = 87;
    EXPECT_EQ(data(chunk), 0);
}

TEST_F(guards, refuse_a_dissector_name_that_does_not_fit_its_tag) {
    for (const std::size_t size : {std::size_t{65'533}, std::size_t{70'000}}) {
        EXPECT_EQ(host_.data("lte_rrc" + std::string(size - 7, 'x'), ""), 100);
        EXPECT_EQ(host_.last_error(),
                  error_entry("format of a record is longer than 65532 bytes", 100U));
    }
    EXPECT_THAT(host_.logs, IsEmpty());
}

TEST_F(guards, ignore_a_long_name_that_is_not_for_tshark) {
    EXPECT_EQ(host_.data(std::string(70'000, 'x'), ""), 0);
    EXPECT_THAT(host_.logs, IsEmpty());
}

TEST_F(guards, refuse_a_payload_that_does_not_fit_its_block) {
    const std::uint8_t byte = 0;
    kivra_trace_chunk chunk{};
    chunk.format = "nas-eps";
    chunk.data = &byte;
    chunk.size = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(data(chunk), 100);
    EXPECT_EQ(host_.last_error(), error_entry("record is too long for a capture file", 100U));
    EXPECT_THAT(host_.logs, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK
