/// tshark's time stamps of packets.
#pragma once

#include <cstdint>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// Microseconds since 1970-01-01, finer digits cut off; 0 for what is no time after that.
/// @param text seconds with a fraction, as "1764100000.150000000", or ISO 8601 in UTC, as
///     "2025-11-25T19:46:40.150000000Z", which newer versions of tshark print
std::uint64_t packet_time(std::string_view text);

}  // namespace KIVRA::TSHARK::REPLAY
