#include "replay/input/exported_pdu.h"

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace std::string_literals;
using namespace TESTING;
using testing::ThrowsMessage;

/// What a packet reads as: the dissector, a colon and the message.
std::string reading_of(const std::string& packet) {
    const auto pdu =
        read_exported_pdu({reinterpret_cast<const std::uint8_t*>(packet.data()), packet.size()});
    return pdu.dissector + ":" + std::string(pdu.bytes.begin(), pdu.bytes.end());
}

constexpr const char* no_name = "no dissector name among the packet's tags";
constexpr const char* broken = "broken packet: its tags run past its end";

TEST(exported_pdu, gives_the_dissector_name_and_the_message) {
    EXPECT_EQ(reading_of(exported_pdu_image("nas-eps", "\x07\x41")), "nas-eps:\x07\x41");
}

TEST(exported_pdu, drops_the_padding_of_the_name) {
    EXPECT_EQ(reading_of(pdu_tag(12, "ip\0\0\0\0"s) + end_of_tags() + "m"), "ip:m");
}

TEST(exported_pdu, takes_a_name_without_padding) {
    EXPECT_EQ(reading_of(pdu_tag(12, "nas-eps") + end_of_tags() + "m"), "nas-eps:m");
}

TEST(exported_pdu, finds_the_name_behind_other_tags) {
    EXPECT_EQ(reading_of(pdu_tag(39, "abcd") + pdu_tag(24, "\0\0\0\1"s) +
                         dissector_name_tag("lte_rrc.pcch") + end_of_tags() + "m"),
              "lte_rrc.pcch:m");
}

TEST(exported_pdu, finds_the_name_in_front_of_other_tags) {
    EXPECT_EQ(reading_of(dissector_name_tag("lte_rrc.pcch") + pdu_tag(39, "abcd") +
                         pdu_tag(24, "") + end_of_tags() + "m"),
              "lte_rrc.pcch:m");
}

TEST(exported_pdu, reads_tag_lengths_of_more_than_one_byte) {
    EXPECT_EQ(reading_of(pdu_tag(39, std::string(300, 'x')) + dissector_name_tag("ip") +
                         end_of_tags() + "m"),
              "ip:m");
}

TEST(exported_pdu, may_have_an_empty_message) {
    EXPECT_EQ(reading_of(exported_pdu_image("nas-eps", "")), "nas-eps:");
}

TEST(exported_pdu, leaves_a_message_alone_that_looks_like_a_tag) {
    EXPECT_EQ(reading_of(exported_pdu_image("ip", dissector_name_tag("x"))),
              "ip:" + dissector_name_tag("x"));
}

TEST(exported_pdu, needs_a_dissector_name) {
    EXPECT_THAT([] { reading_of(pdu_tag(13, "heur") + end_of_tags() + "m"); },
                ThrowsMessage<std::runtime_error>(no_name));
}

TEST(exported_pdu, needs_a_dissector_name_that_is_not_empty) {
    EXPECT_THAT([] { reading_of(pdu_tag(12, "\0\0\0\0"s) + end_of_tags() + "m"); },
                ThrowsMessage<std::runtime_error>(no_name));
}

TEST(exported_pdu, needs_an_end_tag) {
    EXPECT_THAT([] { reading_of(dissector_name_tag("nas-eps")); },
                ThrowsMessage<std::runtime_error>(broken));
}

TEST(exported_pdu, needs_whole_tags) {
    EXPECT_THAT([] { reading_of("\0\x0c\0\x08nas-"s); }, ThrowsMessage<std::runtime_error>(broken));
    EXPECT_THAT([] { reading_of(dissector_name_tag("ip") + "\0\0\0"s); },
                ThrowsMessage<std::runtime_error>(broken));
    EXPECT_THAT([] { reading_of(""); }, ThrowsMessage<std::runtime_error>(broken));
}

bool has_table_only(const std::string& packet) {
    return names_dissector_table(
        {reinterpret_cast<const std::uint8_t*>(packet.data()), packet.size()});
}

TEST(exported_pdu, may_name_a_table_of_dissectors) {
    EXPECT_TRUE(has_table_only(pdu_tag(14, "udp.port") + pdu_tag(32, "\0\0\x12\x79"s) +
                               end_of_tags() + "m"));
}

TEST(exported_pdu, that_names_a_dissector_needs_no_table) {
    EXPECT_FALSE(has_table_only(exported_pdu_image("nas-eps", "m")));
    EXPECT_FALSE(has_table_only(pdu_tag(14, "udp.port") + dissector_name_tag("nas-eps") +
                                end_of_tags() + "m"));
}

TEST(exported_pdu, that_is_broken_names_no_table) {
    EXPECT_FALSE(has_table_only(end_of_tags() + "m"));
    EXPECT_FALSE(has_table_only(pdu_tag(14, "udp.port")));
    EXPECT_FALSE(has_table_only(""));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
