/// The capture file that tshark reads: records as exported PDUs in a pcapng file. A section header
/// and an interface description make its head; an enhanced packet block for each record follows.
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

/// The two blocks that a file begins with, little-endian.
std::string pcapng_head();

/// The block of a record, little-endian but for the exported PDU's tags.
/// @param format the Wireshark dissector for the payload, at most 65,532 bytes
/// @param timestamp microseconds since 1970-01-01
/// @throws std::length_error when a length does not fit its field
std::string pcapng_packet(std::string_view format, std::span<const std::uint8_t> payload,
                          std::uint64_t timestamp);

}  // namespace KIVRA::TSHARK::ANALYSIS
