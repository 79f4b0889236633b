/// Captures made in tests: the bytes of pcap and pcapng files, of exported PDUs and IP packets.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KIVRA::TSHARK::TESTING {

constexpr std::uint32_t exported_pdu_link_type = 252;
constexpr std::uint32_t raw_ip_link_type = 101;

struct image_packet {
    std::string data;
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// How long the packet was before it was cut; without a value it was not.
    std::optional<std::uint32_t> original_length = std::nullopt;
};

struct image_format {
    bool pcapng = true;
    bool big_endian = false;
    /// Time stamps in nanoseconds.
    bool nanoseconds = false;
};

std::string capture_image(std::uint32_t link_type, const std::vector<image_packet>& packets,
                          const image_format& format = {});

/// A tag of an exported PDU; its length is that of the value.
std::string pdu_tag(unsigned type, std::string_view value);

/// The tag with the dissector's name, padded with zero bytes to a multiple of 4.
std::string dissector_name_tag(std::string_view name);

std::string end_of_tags();

/// A packet of link type 252.
std::string exported_pdu_image(std::string_view dissector, std::string_view message);

/// An IPv6 router advertisement for the prefix 2001:db8:1::.
std::string router_advertisement();

}  // namespace KIVRA::TSHARK::TESTING
