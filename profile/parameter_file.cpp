#include "profile/parameter_file.h"

#include <algorithm>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/platform.h"
#include "profile/profile_values.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

nlohmann::json profile_from(const profile_texts& texts) {
    nlohmann::json profile;
    for (const auto& [name, value] : profile_defaults) {
        profile[name] = value;
    }
    for (const auto& value : drx_values) {
        if (const std::string& text = texts.*value.text; !text.empty()) {
            profile[value.file_member] = text;
        }
    }
    if (has_psm_timers(texts)) {
        profile[psm_member] = "True";
        for (const auto& timer : psm_timers) {
            profile[timer.file_member] = texts.*timer.text;
        }
    }
    return profile;
}

}  // namespace

bool is_complete(const profile_texts& texts) {
    return !texts.idrx_int.empty() && !texts.idrx_reps.empty();
}

bool has_psm_timers(const profile_texts& texts) {
    return std::ranges::none_of(
        psm_timers, [&texts](const auto& timer) { return (texts.*timer.text).empty(); });
}

void write_parameter_file(sink_context& context) {
    if (context.parameter_file.empty() || !is_complete(context.texts)) {
        return;
    }
    PLATFORM::write_file(context.parameter_file, profile_from(context.texts).dump(4));
    context.texts = {};
}

}  // namespace KIVRA::TSHARK::PROFILE
