/// The timers of NAS messages: an octet with three bits of unit and five of value.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// Seconds that a unit stands for; 0 for "deactivated".
using timer_units = std::array<std::uint32_t, 8>;

/// 3GPP TS 24.008, 10.5.7.3 (GPRS timer) and 10.5.7.4 (GPRS timer 2): 2 s, 1 minute, a decihour of
/// 6 minutes; 3 to 6 count as minutes.
inline constexpr timer_units gprs_timer_seconds{2, 60, 360, 60, 60, 60, 60, 0};

/// 3GPP TS 24.008, 10.5.7.4a (GPRS timer 3): 10 minutes, 1 h, 10 h, 2 s, 30 s, 1 minute, 320 h.
inline constexpr timer_units gprs_timer_3_seconds{600, 3600, 36000, 2, 30, 60, 1152000, 0};

/// The timer in seconds, or "deactivated".
/// @return nothing unless unit and value fit their three and five bits
inline std::optional<std::string> timer_text(const timer_units& units, std::int64_t unit,
                                             std::int64_t value) {
    constexpr std::int64_t most = 31;
    if (unit < 0 || unit >= static_cast<std::int64_t>(units.size()) || value < 0 || value > most) {
        return std::nullopt;
    }
    const std::uint32_t seconds = units.at(static_cast<std::size_t>(unit));
    return seconds == 0 ? "deactivated" : std::to_string(seconds * value);
}

}  // namespace KIVRA::TSHARK::REPLAY
