/// What follows from the settings of a trace for the modem's sleep.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/trace/setting_history.h"

namespace KIVRA::TSHARK::REPLAY {

struct conclusion {
    /// A sentence or two.
    std::string text;
    /// The record that it rests on.
    std::uint64_t record = 0;
};

/// Power saving mode, eDRX, and the paging cycle: what was granted, and what that means for when
/// the modem is reachable and how long it may sleep (3GPP TS 23.682, 4.5.4 and 4.5.13; 24.301,
/// 5.3.11; 36.304, 7.1 and 7.3). Nothing where the trace does not tell.
std::vector<conclusion> conclusions_of(const setting_history& settings);

/// "252000 s (70 h)"; a duration below two minutes in seconds alone.
std::string readable_seconds(double seconds);

}  // namespace KIVRA::TSHARK::REPLAY
