#include "profile/parameter_file.h"

#include <algorithm>
#include <array>

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

nlohmann::json profile_from(const profile_texts& texts) {
    nlohmann::json profile;
    for (const auto& [name, value] : defaults) {
        profile[name] = value;
    }
    for (const auto& [member, text] : replacing_texts) {
        if (!(texts.*text).empty()) {
            profile[member] = texts.*text;
        }
    }
    if (save_power(texts)) {
        profile[power_saving_member] = "True";
        for (const auto& [member, text] : power_saving_texts) {
            profile[member] = texts.*text;
        }
    }
    return profile;
}

}  // namespace

std::span<const profile_member> profile_defaults() {
    return defaults;
}

bool suffice_for_file(const profile_texts& texts) {
    return !texts.idrx_int.empty() && !texts.idrx_reps.empty();
}

bool save_power(const profile_texts& texts) {
    return std::ranges::all_of(power_saving_texts,
                               [&](const auto& value) { return !(texts.*value.text).empty(); });
}

void write_parameter_file(sink_context& context) {
    if (context.parameter_file.empty() || !suffice_for_file(context.texts)) {
        return;
    }
    PLATFORM::write_file(context.parameter_file, profile_from(context.texts).dump(4));
    context.texts = {};
}

}  // namespace KIVRA::TSHARK::PROFILE
