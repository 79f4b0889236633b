/// The capture file that tshark reads: one record, as an exported PDU, in a pcapng file of three
/// blocks (section header, interface description, enhanced packet).
///
/// Sources: the pcapng format (IETF draft-ietf-opsawg-pcapng) for the blocks, the registry of link
/// types for 252 (upper-layer PDUs exported by Wireshark), Wireshark's exported-PDU tags for the
/// payload's header.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace KIVRA::TSHARK::ANALYSIS {

/// The whole file, little-endian but for the exported PDU's tags.
/// @param format the Wireshark dissector for the payload, at most 65,532 bytes
/// @param timestamp microseconds since 1970-01-01
/// @throws std::length_error when a length does not fit its field
std::string pcapng_image(std::string_view format, std::span<const std::uint8_t> payload,
                         std::uint64_t timestamp);

}  // namespace KIVRA::TSHARK::ANALYSIS
