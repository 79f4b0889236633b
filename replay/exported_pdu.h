/// An exported PDU: a protocol message behind tags that say, among other things, which dissector
/// reads it. The packets of captures with link type 252 are such.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

struct exported_pdu {
    /// The dissector's name, for example "nas-eps"; never empty.
    std::string dissector;
    /// The message; a part of the packet that was read.
    std::span<const std::uint8_t> message;
};

/// Reads the tags (big-endian type and length, then the value) up to the end tag.
/// @throws std::runtime_error when the tags don't end within the packet, or name no dissector
exported_pdu read_exported_pdu(std::span<const std::uint8_t> packet);

}  // namespace KIVRA::TSHARK::REPLAY
