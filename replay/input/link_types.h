/// The link types of captures that can be read, and what reads a packet of each.
#pragma once

#include <cstdint>
#include <span>

#include "replay/input/captured_message.h"

namespace KIVRA::TSHARK::REPLAY {

/// Finds the message in a packet.
/// @throws std::runtime_error when the packet is malformed
using packet_reader = captured_message(std::span<const std::uint8_t> packet);

/// @param link_type as libpcap numbers them (DLT_...)
/// @return null for a link type that can't be read
packet_reader* packet_reader_of(int link_type);

}  // namespace KIVRA::TSHARK::REPLAY
