/// The values of the power profile that come from the trace: where a result document holds each,
/// which text of the context keeps it, and the member of the parameter file that it goes into.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::PROFILE {

struct profile_value {
    std::string_view protocol;
    std::string_view member;
    /// The member's own member that is the text; empty where the member itself is.
    std::string_view part;
    std::string profile_texts::*text;
    std::string_view file_member;
};

/// In the order in which they are read: a value that is not a text ends the reading.
inline constexpr std::array<profile_value, 7> profile_values{{
    {"lte-rrc", "cdrx_int", "", &profile_texts::cdrx_int, "cdrx_int"},
    {"lte-rrc", "cdrx_on_duration", "", &profile_texts::cdrx_on_duration, "cdrx_on_duration"},
    {"lte-rrc", "cdrx_inactive_timer", "", &profile_texts::cdrx_inactive_timer,
     "cdrx_inactive_timer"},
    {"lte-rrc", "idrx_reps", "", &profile_texts::idrx_reps, "idrx_reps"},
    {"lte-rrc", "idrx_int", "", &profile_texts::idrx_int, "idrx_int"},
    {"nas-eps", "gprs_timer_3_T3412_extended_value", "bitmask",
     &profile_texts::t3412_extended_bitmask, "config_lte_psm_req_rptau"},
    {"nas-eps", "gprs_timer_2_T3324_value", "bitmask", &profile_texts::t3324_bitmask,
     "config_lte_psm_req_rat"},
}};

/// Discontinuous reception, connected and idle. Each value replaces its own default.
inline constexpr auto drx_values = std::span(profile_values).first<5>();

/// The timers of the power saving mode, which replace their defaults together: a modem that asks
/// for one of them alone gets no power saving mode.
inline constexpr auto psm_timers = std::span(profile_values).last<2>();

}  // namespace KIVRA::TSHARK::PROFILE
