#include "profile/result_mapping.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "profile/parameter_file.h"
#include "profile/profile_values.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

using nlohmann::json;

/// A part that is lacking counts as null.
std::string text_of(const json& member, std::string_view part) {
    if (part.empty()) {
        return member.get<std::string>();
    }
    const json null;
    const bool lacking = member.is_null() || (member.is_object() && !member.contains(part));
    const json& text = lacking ? null : member[part];
    return text.get<std::string>();
}

void carry_values(const json& result, std::span<const profile_value> values, profile_texts& texts) {
    for (const auto& value : values) {
        if (result.contains(value.protocol) && result[value.protocol].contains(value.member)) {
            texts.*value.text = text_of(result[value.protocol][value.member], value.part);
        }
    }
}

void carry_pdn(const json& result, json& carried_state) {
    if (result.contains("nas-eps") && result["nas-eps"].contains("pdn")) {
        carried_state["nas-eps"]["pdn"] = result["nas-eps"]["pdn"];
    }
}

}  // namespace

void carry_texts(const json& result, profile_texts& texts) {
    carry_values(result, profile_values, texts);
}

void map_packet(sink_context& context, const json& packet, json& result) {
    const auto parser = std::ranges::find_if(
        context.parsers, [&packet](const auto& candidate) { return candidate->accepts(packet); });
    if (parser == context.parsers.end()) {
        return;
    }
    (*parser)->parse(packet, result);

    carry_values(result, drx_values, context.texts);
    carry_pdn(result, context.carried_state);
    carry_values(result, psm_timers, context.texts);
    write_parameter_file(context);
}

}  // namespace KIVRA::TSHARK::PROFILE
