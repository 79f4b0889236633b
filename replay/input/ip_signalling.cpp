#include "replay/input/ip_signalling.h"

#include <algorithm>
#include <cstddef>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr unsigned gsmtap_port = 4'729;
// The registry of protocol numbers of IANA.
constexpr std::uint8_t udp = 17;
constexpr std::uint8_t sctp = 132;

unsigned port_at(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return static_cast<unsigned>(bytes[offset]) << 8U | bytes[offset + 1];
}

/// What an IP packet carries.
struct ip_content {
    std::uint8_t protocol = 0;
    std::span<const std::uint8_t> payload;
};

/// Extension headers of IPv6 are not followed.
ip_content content_of(std::span<const std::uint8_t> packet) {
    // RFC 791, 3.1 and RFC 8200, 3.
    constexpr std::size_t ipv4_header = 20;
    constexpr std::size_t ipv4_protocol = 9;
    constexpr std::size_t ipv6_header = 40;
    constexpr std::size_t ipv6_next_header = 6;
    constexpr std::size_t word = 4;
    const unsigned version = packet.empty() ? 0 : packet[0] >> 4U;
    if (version == 4 && packet.size() >= ipv4_header) {
        const std::size_t length = (packet[0] & 0xFU) * word;
        return {packet[ipv4_protocol], packet.subspan(std::min(length, packet.size()))};
    }
    if (version == 6 && packet.size() >= ipv6_header) {
        return {packet[ipv6_next_header], packet.subspan(ipv6_header)};
    }
    return {};
}

}  // namespace

bool carries_signalling(std::span<const std::uint8_t> ip_packet) {
    const auto [protocol, payload] = content_of(ip_packet);
    constexpr std::size_t ports = 4;
    return protocol == sctp ||
           (protocol == udp && payload.size() >= ports &&
            (port_at(payload, 0) == gsmtap_port || port_at(payload, 2) == gsmtap_port));
}

}  // namespace KIVRA::TSHARK::REPLAY
