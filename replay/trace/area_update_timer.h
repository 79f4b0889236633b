/// How often the network wants tracking area updates.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "replay/trace/setting_history.h"

namespace KIVRA::TSHARK::REPLAY {

struct area_update_timer {
    /// "T3412" or "T3412 extended".
    std::string name;
    /// In words: "3240 s", "deactivated".
    std::string value = {};
    /// Nothing for one that is deactivated or whose value is not known.
    std::optional<double> seconds = {};
    /// The record that granted it.
    std::uint64_t record = 0;
};

/// The setting that asks for updates: T3412 extended takes the place of T3412, but counts as not
/// there where it is deactivated (3GPP TS 24.301, 5.3.5; 24.008, table 10.5.163a). Null where the
/// network granted none.
const setting_entry* granted_update_timer(const setting_history& settings);

/// The one in force at the end; nothing where the network granted none.
std::optional<area_update_timer> area_update_timer_of(const setting_history& settings);

}  // namespace KIVRA::TSHARK::REPLAY
