#include "profile/parameter_file.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

nlohmann::json profile_from(const profile_texts& texts) {
    nlohmann::json profile;
    for (const auto& [name, value] : profile_defaults) {
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
