#include "profile/parameter_file.h"

#include <array>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

constexpr std::array<profile_member, 31> defaults{{
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

void replace_if_known(nlohmann::json& profile, std::string_view name, const std::string& text) {
    if (!text.empty()) {
        profile[name] = text;
    }
}

/// Both timers or neither: a modem that asks for one of them alone gets no power saving mode.
void set_power_saving_mode(nlohmann::json& profile, const profile_texts& texts) {
    if (texts.t3324_bitmask.empty() || texts.t3412_extended_bitmask.empty()) {
        return;
    }
    profile["psm"] = "True";
    profile["config_lte_psm_req_rat"] = texts.t3324_bitmask;
    profile["config_lte_psm_req_rptau"] = texts.t3412_extended_bitmask;
}

nlohmann::json profile_from(const profile_texts& texts) {
    nlohmann::json profile;
    for (const auto& [name, value] : defaults) {
        profile[name] = value;
    }
    replace_if_known(profile, "cdrx_inactive_timer", texts.cdrx_inactive_timer);
    replace_if_known(profile, "cdrx_int", texts.cdrx_int);
    replace_if_known(profile, "cdrx_on_duration", texts.cdrx_on_duration);
    replace_if_known(profile, "idrx_int", texts.idrx_int);
    replace_if_known(profile, "idrx_reps", texts.idrx_reps);
    set_power_saving_mode(profile, texts);
    return profile;
}

}  // namespace

std::span<const profile_member> profile_defaults() {
    return defaults;
}

void write_parameter_file(sink_context& context) {
    if (context.parameter_file.empty() || context.texts.idrx_int.empty() ||
        context.texts.idrx_reps.empty()) {
        return;
    }
    PLATFORM::write_file(context.parameter_file, profile_from(context.texts).dump(4));
    context.texts = {};
}

}  // namespace KIVRA::TSHARK::PROFILE
