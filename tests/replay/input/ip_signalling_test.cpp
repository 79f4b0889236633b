#include "replay/input/ip_signalling.h"

#include <string>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace std::string_literals;

constexpr char udp = 17;
constexpr char tcp = 6;
constexpr char sctp = '\x84';

/// UDP ports, or what else a payload begins with.
const std::string to_gsmtap = "\x30\x39\x12\x79"s;
const std::string from_gsmtap = "\x12\x79\x30\x39"s;
const std::string other_ports = "\x30\x39\x12\x7a"s;

std::string ipv4(char protocol, const std::string& payload, const std::string& options = "") {
    std::string header(20, '\0');
    header[0] = static_cast<char>(0x45 + options.size() / 4);
    header[9] = protocol;
    return header + options + payload;
}

std::string ipv6(char next_header, const std::string& payload) {
    std::string header(40, '\0');
    header[0] = 0x60;
    header[6] = next_header;
    return header + payload;
}

bool has_signalling(const std::string& packet) {
    return carries_signalling(
        {reinterpret_cast<const std::uint8_t*>(packet.data()), packet.size()});
}

TEST(ip_signalling, is_gsmtap_in_either_direction) {
    for (const auto& ports : {to_gsmtap, from_gsmtap}) {
        EXPECT_TRUE(has_signalling(ipv4(udp, ports)));
        EXPECT_TRUE(has_signalling(ipv6(udp, ports)));
        EXPECT_TRUE(has_signalling(ipv4(udp, ports, "\1\1\1\0"s)));
    }
}

TEST(ip_signalling, is_sctp) {
    EXPECT_TRUE(has_signalling(ipv4(sctp, "")));
    EXPECT_TRUE(has_signalling(ipv6(sctp, "")));
}

TEST(ip_signalling, is_no_other_protocol) {
    EXPECT_FALSE(has_signalling(ipv4(udp, other_ports)));
    EXPECT_FALSE(has_signalling(ipv6(udp, other_ports)));
    EXPECT_FALSE(has_signalling(ipv4(tcp, to_gsmtap)));
    EXPECT_FALSE(has_signalling(ipv6(tcp, to_gsmtap)));
}

TEST(ip_signalling, is_not_in_packets_that_are_cut_short) {
    EXPECT_FALSE(has_signalling(""));
    EXPECT_FALSE(has_signalling(ipv4(sctp, "").substr(0, 19)));
    EXPECT_FALSE(has_signalling(ipv6(sctp, "").substr(0, 39)));
    EXPECT_FALSE(has_signalling(ipv4(udp, to_gsmtap.substr(0, 3))));
    EXPECT_FALSE(has_signalling(ipv4(udp, "", "\1\1\1\0"s).substr(0, 22)));
}

TEST(ip_signalling, is_not_in_what_is_no_ip_packet) {
    auto packet = ipv4(sctp, "");
    packet[0] = 0x55;
    EXPECT_FALSE(has_signalling(packet));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
