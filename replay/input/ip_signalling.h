/// IP packets that carry signalling of mobile networks.
#pragma once

#include <cstdint>
#include <span>

namespace KIVRA::TSHARK::REPLAY {

/// Whether an IP packet is one of GSMTAP (UDP port 4729, the registry of IANA), which tools send
/// that read a modem's diagnostics, or of SCTP, as between the nodes of a core network.
bool carries_signalling(std::span<const std::uint8_t> ip_packet);

}  // namespace KIVRA::TSHARK::REPLAY
