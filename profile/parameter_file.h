/// The power-profile parameter file: one flat JSON object of 31 profiler settings, every value a
/// text, sorted by name, indented by 4 blanks, without a newline at its end. Seven values come
/// from the trace; the rest, and what the trace does not tell, is a fixed default.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::PROFILE {

struct profile_member {
    std::string_view name;
    std::string_view value;
};

/// All 31 members, sorted by name, as they stand before anything is known of the trace. `idrx_int`
/// and `idrx_reps` have no default (their value here is empty): no file is written without them.
inline constexpr std::array<profile_member, 31> profile_defaults{{
    {"cdrx_inactive_timer", "0"},
    {"cdrx_int", "0"},
    {"cdrx_len", "7"},
    {"cdrx_on_duration", "0"},
    {"chip", "5"},
    {"config_lte_edrx_req_value", "0000"},
    {"config_lte_psm_req_rat", "00000000"},
    {"config_lte_psm_req_rptau", "00000000"},
    {"data_en", "off"},
    {"data_int", "3600"},
    {"data_size", "100"},
    {"drx_idle", "(10,80)"},
    {"drx_sync", "(64,80)"},
    {"gps_en", "off"},
    {"gps_fix_time", "1"},
    {"gps_interval", "1800"},
    {"idrx_en", "True"},
    {"idrx_int", ""},
    {"idrx_len", "10"},
    {"idrx_nb_sync", ""},
    {"idrx_reps", ""},
    {"idrx_sync", "(320,5120)"},
    {"lte_type", "m1"},
    {"psm", "False"},
    {"psm_int", "3600"},
    {"sim_sleep", "30"},
    {"sim_sleep_enable", "True"},
    {"software", "0"},
    {"tx_power", "23"},
    {"tx_power_nb", "23"},
    {"voltage", "3.7"},
}};

/// A member whose value is a text of the trace.
struct profile_text {
    std::string_view member;
    std::string profile_texts::*text;
};

/// Each replaces its default once the trace gave it.
inline constexpr std::array<profile_text, 5> replacing_texts{{
    {"cdrx_inactive_timer", &profile_texts::cdrx_inactive_timer},
    {"cdrx_int", &profile_texts::cdrx_int},
    {"cdrx_on_duration", &profile_texts::cdrx_on_duration},
    {"idrx_int", &profile_texts::idrx_int},
    {"idrx_reps", &profile_texts::idrx_reps},
}};

/// Replace their defaults together, and set "psm" to "True": a modem that asks for one of the two
/// timers alone gets no power saving mode.
inline constexpr std::array<profile_text, 2> power_saving_texts{{
    {"config_lte_psm_req_rat", &profile_texts::t3324_bitmask},
    {"config_lte_psm_req_rptau", &profile_texts::t3412_extended_bitmask},
}};

/// The member that tells whether the modem saves power; "True" with both texts.
inline constexpr std::string_view power_saving_member = "psm";

/// Whether the texts suffice for a file: `idrx_int` and `idrx_reps` are known.
bool suffice_for_file(const profile_texts& texts);

/// Whether both `power_saving_texts` are known.
bool save_power(const profile_texts& texts);

/// Writes the context's parameter file from its texts and then clears the texts. Does nothing at
/// all while the path, `idrx_int` or `idrx_reps` is empty.
///
/// A file that can't be written is not reported.
/// @throws nlohmann::json::type_error 316 for a text that is no UTF-8; nothing is written and no
///     text cleared then
void write_parameter_file(sink_context& context);

}  // namespace KIVRA::TSHARK::PROFILE
