/// An exported PDU: a protocol message behind tags that say, among other things, which dissector
/// reads it. The packets of captures with link type 252 are such.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// The message that a packet of a capture holds.
struct captured_message {
    /// The name of the Wireshark dissector that reads it, for example "nas-eps"; never empty.
    std::string dissector;
    /// A part of the packet that was read.
    std::span<const std::uint8_t> bytes;
};

/// Reads the tags (big-endian type and length, then the value) up to the end tag.
/// @throws std::runtime_error when the tags don't end within the packet, or name no dissector
captured_message read_exported_pdu(std::span<const std::uint8_t> packet);

/// Whether the packet says by a table of dissectors, as that of UDP ports, who reads it, and not by
/// a dissector's name.
bool names_dissector_table(std::span<const std::uint8_t> packet);

}  // namespace KIVRA::TSHARK::REPLAY
