#include "analysis/pcapng_image.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using TESTING::bytes_of;
using TESTING::hex_of;
using testing::StrEq;
using testing::ThrowsMessage;

constexpr std::size_t packet_block = 72;

std::string image_of(std::string_view format, const std::string& payload = {},
                     std::uint64_t timestamp = 0) {
    return pcapng_head() +
           pcapng_packet(format,
                         {reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()},
                         timestamp);
}

TEST(pcapng_image, begins_with_the_section_header) {
    EXPECT_EQ(hex_of(image_of("nas-eps").substr(0, 32)),
              "0a0d0d0a"
              "20000000"
              "4d3c2b1a"
              "01000000"
              "ffffffffffffffff"
              "00000000"
              "20000000");
}

TEST(pcapng_image, goes_on_with_the_interface_description) {
    EXPECT_EQ(hex_of(image_of("nas-eps").substr(32, 40)),
              "01000000"
              "28000000"
              "fc000000"
              "ffffffff"
              "03000a00"
              "53657269616c706f7274"
              "0000"
              "00000000"
              "28000000");
}

TEST(pcapng_image, ends_with_the_packet_and_nothing_behind_it) {
    EXPECT_EQ(
        hex_of(image_of("nas-eps", bytes_of("074300"), 0x0000000100000002).substr(packet_block)),
        "06000000"
        "38000000"
        "00000000"
        "01000000"
        "02000000"
        "13000000"
        "13000000"
        "000c0008"
        "6e61732d65707300"
        "00000000"
        "074300"
        "00"
        "00000000"
        "38000000");
}

TEST(pcapng_image, of_an_empty_record_holds_the_exported_pdu_header_alone) {
    EXPECT_EQ(hex_of(image_of("nas-eps").substr(packet_block)),
              "06000000"
              "34000000"
              "00000000"
              "00000000"
              "00000000"
              "10000000"
              "10000000"
              "000c0008"
              "6e61732d65707300"
              "00000000"
              "00000000"
              "34000000");
}

TEST(pcapng_image, rounds_the_name_up_to_a_multiple_of_four) {
    const auto tag_of = [](std::string_view format) {
        const std::size_t rounded = (format.size() + 3) / 4 * 4;
        return hex_of(image_of(format).substr(packet_block + 28, 4 + rounded + 4));
    };
    EXPECT_EQ(tag_of("a"),
              "000c0004"
              "61000000"
              "00000000");
    EXPECT_EQ(tag_of("ab"),
              "000c0004"
              "61620000"
              "00000000");
    EXPECT_EQ(tag_of("abc"),
              "000c0004"
              "61626300"
              "00000000");
    EXPECT_EQ(tag_of("abcd"),
              "000c0004"
              "61626364"
              "00000000");
    EXPECT_EQ(tag_of("abcdefgh"),
              "000c0008"
              "6162636465666768"
              "00000000");
}

TEST(pcapng_image, pads_the_packet_but_does_not_count_the_padding_as_captured) {
    for (const std::size_t length : {0U, 1U, 2U, 3U, 4U, 5U}) {
        const std::string image = image_of("lte_rrc.dl_ccch", std::string(length, '\xAB'));
        const std::size_t captured = 4 + 16 + 4 + length;
        const std::size_t padded = (captured + 3) / 4 * 4;
        ASSERT_EQ(image.size(), packet_block + padded + 36);
        EXPECT_EQ(static_cast<std::uint8_t>(image[packet_block + 4]), padded + 36);
        EXPECT_EQ(static_cast<std::uint8_t>(image[packet_block + 20]), captured);
        EXPECT_EQ(static_cast<std::uint8_t>(image[packet_block + 24]), captured);
        EXPECT_EQ(image.substr(packet_block + 28 + captured, padded - captured + 4),
                  std::string(padded - captured + 4, '\0'));
        EXPECT_EQ(image.substr(image.size() - 4), image.substr(packet_block + 4, 4));
    }
}

TEST(pcapng_image, writes_the_tag_length_high_byte_first) {
    EXPECT_EQ(hex_of(image_of(std::string(1000, 'x')).substr(packet_block + 28, 4)), "000c03e8");
}

TEST(pcapng_image, takes_a_format_of_65532_bytes_and_none_longer) {
    EXPECT_EQ(hex_of(image_of(std::string(65'532, 'x')).substr(packet_block + 28, 4)), "000cfffc");
    EXPECT_THAT(
        [] { image_of(std::string(65'533, 'x')); },
        ThrowsMessage<std::length_error>(StrEq("format of a record is longer than 65532 bytes")));
}

TEST(pcapng_image, refuses_a_payload_that_overflows_the_block_length) {
    const std::uint8_t byte = 0;
    // The span only claims the size: the length is checked before a byte is read.
    const std::span<const std::uint8_t> payload(&byte, 0xFFFFFFFF);
    EXPECT_THAT([payload] { pcapng_packet("nas-eps", payload, 0); },
                ThrowsMessage<std::length_error>(StrEq("record is too long for a capture file")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
