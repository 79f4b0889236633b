/// The values of a power profile beside what they stand for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "replay/trace/profile_file.h"
#include "replay/trace/profile_sources.h"
#include "replay/trace/setting_history.h"

namespace KIVRA::TSHARK::REPLAY {

struct profile_truth {
    /// Of the parameter file, such as "cdrx_int".
    std::string member;
    /// As the file has it.
    std::string value;
    /// The record that it came from; for a member at its default, the last one that told its
    /// setting.
    std::uint64_t record = 0;
    /// What that record says, such as "long DRX cycle 320 ms"; empty where nothing is known.
    std::string truth;
    /// Why the value, read as it stands, is not that; empty where it is.
    std::string_view difference;
};

/// The members that came from the trace, and those at their defaults whose settings it tells.
std::vector<profile_truth> truth_beside(const profile_content& profile,
                                        const profile_sources& sources,
                                        const setting_history& settings);

}  // namespace KIVRA::TSHARK::REPLAY
