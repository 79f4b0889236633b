/// The power-profile parameter file: one flat JSON object of 31 profiler settings, every value a
/// text, sorted by name, indented by 4 blanks, without a newline at its end. The `profile_values`
/// come from the trace; the rest, and what the trace does not tell, is a fixed default.
#pragma once

#include <array>
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

/// The member that tells whether the modem uses the power saving mode: "True" when both timers are
/// known.
inline constexpr std::string_view psm_member = "psm";

/// Whether a file can be written from the texts: `idrx_int` and `idrx_reps` are known.
bool is_complete(const profile_texts& texts);

/// Whether both `psm_timers` are known.
bool has_psm_timers(const profile_texts& texts);

/// Writes the context's parameter file from its texts and then clears the texts. Does nothing at
/// all while the path, `idrx_int` or `idrx_reps` is empty.
///
/// A file that can't be written is not reported.
/// @throws nlohmann::json::type_error 316 for a text that is not UTF-8; nothing is written and no
///     text cleared then
void write_parameter_file(sink_context& context);

}  // namespace KIVRA::TSHARK::PROFILE
