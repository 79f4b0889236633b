/// The message that a packet of a capture holds.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

struct captured_message {
    /// The name of the Wireshark dissector that reads it, for example "nas-eps"; never empty.
    std::string dissector;
    /// A part of the packet that was read.
    std::span<const std::uint8_t> bytes;
};

}  // namespace KIVRA::TSHARK::REPLAY
