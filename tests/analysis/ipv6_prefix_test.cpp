#include "analysis/ipv6_prefix.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::ThrowsMessage;

/// 88 bytes, of which only those that the capture looks at are set.
std::string advertisement(const std::string& prefix_hex = "20010db8000100000000000000000000") {
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    return packet.replace(72, 16, TESTING::bytes_of(prefix_hex));
}

json with_prefix(const char* prefix) {
    return {{"nas-eps", {{"pdn", {{"ICMPv6_prefix", prefix}}}}}};
}

class ipv6_prefix : public TESTING::scratch_test {
  protected:
    void capture(const std::string& packet, const char* format = "ip") {
        kivra_trace_chunk chunk{};
        chunk.data = reinterpret_cast<const std::uint8_t*>(packet.data());
        chunk.size = static_cast<std::uint32_t>(packet.size());
        chunk.format = format;
        capture_ipv6_prefix(context_, chunk, receive_);
    }

    const document_receiver receive_ = [this](const json& document) {
        texts_.push_back(document.dump(4));
    };

    std::vector<std::string> texts_;
    sink_context context_{nullptr, nullptr, "tshark.exe", scratch() / "output.json", ""};
};

TEST_F(ipv6_prefix, goes_back_alone_and_is_not_kept_before_any_pdn_is_known) {
    capture(advertisement());
    ASSERT_EQ(texts_.size(), 1U);
    EXPECT_EQ(texts_.front(), with_prefix("2001:0db8:0001:0000:0000:0000:0000:0000").dump(4));
    EXPECT_TRUE(context_.carried_state.is_null());
}

TEST_F(ipv6_prefix, counts_an_empty_object_as_nothing_known) {
    context_.carried_state = json::object();
    capture(advertisement());
    EXPECT_TRUE(context_.carried_state.empty());
    EXPECT_EQ(texts_.size(), 1U);
}

TEST_F(ipv6_prefix, is_added_to_the_known_pdn_and_kept) {
    context_.carried_state = json::parse(R"({"nas-eps": {"pdn": {"ipv4": "10.0.0.1"}}})");
    capture(advertisement());
    const json expected = json::parse(R"({"nas-eps": {"pdn": {
        "ICMPv6_prefix": "2001:0db8:0001:0000:0000:0000:0000:0000", "ipv4": "10.0.0.1"}}})");
    EXPECT_EQ(context_.carried_state, expected);
    ASSERT_EQ(texts_.size(), 1U);
    EXPECT_EQ(texts_.front(), expected.dump(4));
}

TEST_F(ipv6_prefix, replaces_an_earlier_one) {
    context_.carried_state = with_prefix("old");
    capture(advertisement("fe800000000000000000000000000001"));
    EXPECT_EQ(context_.carried_state, with_prefix("fe80:0000:0000:0000:0000:0000:0000:0001"));
}

TEST_F(ipv6_prefix, is_written_in_lower_case_with_every_zero) {
    capture(advertisement("00010203040506070809a0b0c0d0e0ff"));
    ASSERT_EQ(texts_.size(), 1U);
    EXPECT_EQ(json::parse(texts_.front()), with_prefix("0001:0203:0405:0607:0809:a0b0:c0d0:e0ff"));
}

TEST_F(ipv6_prefix, needs_88_bytes) {
    capture(advertisement().substr(0, 87));
    EXPECT_TRUE(texts_.empty());
    capture(advertisement() + "more");
    EXPECT_EQ(texts_.size(), 1U);
}

TEST_F(ipv6_prefix, needs_icmpv6_as_next_header) {
    std::string packet = advertisement();
    for (int header = 0; header < 256; ++header) {
        texts_.clear();
        packet[6] = static_cast<char>(header);
        capture(packet);
        EXPECT_EQ(texts_.size(), header == 58 ? 1U : 0U) << header;
    }
}

TEST_F(ipv6_prefix, needs_the_type_of_a_router_advertisement) {
    std::string packet = advertisement();
    for (int type = 0; type < 256; ++type) {
        texts_.clear();
        packet[40] = static_cast<char>(type);
        capture(packet);
        EXPECT_EQ(texts_.size(), type == 134 ? 1U : 0U) << type;
    }
}

TEST_F(ipv6_prefix, is_taken_whatever_the_version_checksum_and_option_type) {
    std::string packet = advertisement();
    packet[0] = 0x45;
    packet[42] = 0x55;
    packet[56] = 99;
    capture(packet);
    EXPECT_EQ(texts_.size(), 1U);
}

TEST_F(ipv6_prefix, needs_the_format_to_the_letter) {
    for (const char* format : {"IP", "ip ", "ipv6", "i", "", "Ip"}) {
        capture(advertisement(), format);
    }
    EXPECT_TRUE(texts_.empty());
}

TEST_F(ipv6_prefix, is_kept_whatever_becomes_of_the_document) {
    context_.carried_state = with_prefix("old");
    const std::string packet = advertisement();
    kivra_trace_chunk chunk{};
    chunk.data = reinterpret_cast<const std::uint8_t*>(packet.data());
    chunk.size = static_cast<std::uint32_t>(packet.size());
    chunk.format = "ip";
    capture_ipv6_prefix(context_, chunk, [](const json&) {});
    EXPECT_EQ(context_.carried_state, with_prefix("2001:0db8:0001:0000:0000:0000:0000:0000"));
}

TEST_F(ipv6_prefix, is_kept_before_the_document_is_received) {
    context_.carried_state = with_prefix("old");
    const std::string packet = advertisement();
    kivra_trace_chunk chunk{};
    chunk.data = reinterpret_cast<const std::uint8_t*>(packet.data());
    chunk.size = static_cast<std::uint32_t>(packet.size());
    chunk.format = "ip";
    json kept;
    EXPECT_THROW(capture_ipv6_prefix(context_, chunk,
                                     [&](const json&) {
                                         kept = context_.carried_state;
                                         throw std::runtime_error("host is full");
                                     }),
                 std::runtime_error);
    EXPECT_EQ(kept, with_prefix("2001:0db8:0001:0000:0000:0000:0000:0000"));
    EXPECT_EQ(context_.carried_state, kept);
}

TEST_F(ipv6_prefix, is_refused_by_a_carried_state_that_cannot_hold_it) {
    context_.carried_state = json::parse(R"({"nas-eps": {"pdn": "text"}})");
    EXPECT_THAT([this] { capture(advertisement()); },
                ThrowsMessage<json::type_error>(HasSubstr("type_error.305")));
    EXPECT_TRUE(texts_.empty());
}

TEST_F(ipv6_prefix, is_refused_by_a_nas_member_that_is_no_object) {
    context_.carried_state = json::parse(R"({"nas-eps": ["array"]})");
    EXPECT_THAT([this] { capture(advertisement()); },
                ThrowsMessage<json::type_error>(HasSubstr("type_error.305")));
    EXPECT_TRUE(texts_.empty());
}

TEST_F(ipv6_prefix, does_not_reach_the_host_when_the_carried_state_is_no_utf8) {
    context_.carried_state["nas-eps"]["pdn"]["x"] = "\xFF";
    EXPECT_THAT([this] { capture(advertisement()); },
                ThrowsMessage<json::type_error>(HasSubstr("type_error.316")));
    EXPECT_TRUE(texts_.empty());
}

TEST_F(ipv6_prefix, wants_data_where_there_is_a_size) {
    kivra_trace_chunk chunk{};
    chunk.size = 88;
    chunk.format = "ip";
    EXPECT_THROW(capture_ipv6_prefix(context_, chunk, receive_), std::invalid_argument);
}

TEST_F(ipv6_prefix, leaves_no_file) {
    context_.carried_state = with_prefix("old");
    capture(advertisement());
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
