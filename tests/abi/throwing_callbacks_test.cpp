#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using TESTING::error_entry;
using TESTING::host;
using testing::IsEmpty;

constexpr auto one_packet =
    R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "1",
                                            "lte-rrc.drx_InactivityTimer": "99"}}}}])";

/// Throws something that is no standard exception.
[[noreturn]] void throw_anything() {
    throw 5;
}

class throwing_callbacks : public TESTING::scratch_test {
  protected:
    void expect_no_working_files() {
        for (const auto& name : TESTING::names_in(".")) {
            EXPECT_TRUE(name.starts_with("fake_tshark")) << name;
        }
    }

    host host_;
};

TEST_F(throwing_callbacks, of_the_schema_give_100) {
    EXPECT_EQ(host_.exports.init_parameters(nullptr, [](void*, const char*) { throw_anything(); }),
              100);
    EXPECT_EQ(host_.exports.init_parameters(
                  nullptr, [](void*, const char*) { throw std::runtime_error("x"); }),
              100);
}

TEST_F(throwing_callbacks, of_the_version_give_100) {
    EXPECT_EQ(
        host_.exports.version(nullptr, [](void*, const kivra_version_info*) { throw_anything(); }),
        100);
}

TEST_F(throwing_callbacks, of_init_errors_give_1) {
    kivra_init_parameters block = host_.block({});
    block.count = 21;
    block.error_callback = [](void*, const kivra_error*) { throw_anything(); };
    EXPECT_EQ(host_.exports.init(&host_.context, &block), 1);
    block.error_callback = [](void*, const kivra_error*) { throw std::runtime_error("x"); };
    EXPECT_EQ(host_.exports.init(&host_.context, &block), 1);
}

TEST_F(throwing_callbacks, of_the_last_error_are_swallowed) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.exports.get_last_error(host_.context, nullptr,
                                 [](void*, const kivra_error*) { throw_anything(); });
}

TEST_F(throwing_callbacks, of_chunks_fail_the_record) {
    TESTING::fake_tshark_prints(one_packet);
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw std::runtime_error("host is full"); };
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.last_error(), error_entry("host is full", 100U));
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw_anything(); };
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.last_error(), error_entry("unknown error", 100U));
    expect_no_working_files();
}

TEST_F(throwing_callbacks, of_chunks_fail_an_ip_record) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw std::runtime_error("host is full"); };
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    EXPECT_EQ(host_.data("ip", packet), 100);
    EXPECT_EQ(host_.last_error(), error_entry("host is full", 100U));
}

TEST_F(throwing_callbacks, of_the_log_fail_the_record_wherever_it_logs) {
    TESTING::fake_tshark_prints(one_packet);
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_log = [] { throw std::runtime_error("log is full"); };
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.logs.back().message, "99 mapping not found");
    EXPECT_EQ(host_.last_error(), error_entry("log is full", 100U));

    host_.on_log = [this] {
        if (TESTING::is_timing(host_.logs.back().message)) {
            throw_anything();
        }
    };
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.last_error(), error_entry("unknown error", 100U));
    EXPECT_THAT(host_.texts, IsEmpty());
    expect_no_working_files();
}

}  // namespace
}  // namespace KIVRA::TSHARK
