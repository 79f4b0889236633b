#include "profile/result_mapping.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "profile/parameter_file.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

void carry_lte_rrc(const nlohmann::json& result, profile_texts& texts) {
    if (!result.contains("lte-rrc")) {
        return;
    }
    const auto& lte_rrc = result["lte-rrc"];
    const auto carry = [&lte_rrc](std::string_view member, std::string& text) {
        if (lte_rrc.contains(member)) {
            text = lte_rrc.at(member).get<std::string>();
        }
    };
    carry("cdrx_int", texts.cdrx_int);
    carry("cdrx_on_duration", texts.cdrx_on_duration);
    carry("cdrx_inactive_timer", texts.cdrx_inactive_timer);
    carry("idrx_reps", texts.idrx_reps);
    carry("idrx_int", texts.idrx_int);
}

void carry_pdn(const nlohmann::json& result, nlohmann::json& carried_state) {
    if (result.contains("nas-eps") && result["nas-eps"].contains("pdn")) {
        carried_state["nas-eps"]["pdn"] = result["nas-eps"]["pdn"];
    }
}

void carry_bitmask(nlohmann::json& nas_eps, std::string_view timer, std::string& text) {
    if (nas_eps.contains(timer)) {
        text = nas_eps[timer]["bitmask"].get<std::string>();
    }
}

void carry_bitmasks(nlohmann::json& result, profile_texts& texts) {
    if (!result.contains("nas-eps")) {
        return;
    }
    auto& nas_eps = result["nas-eps"];
    carry_bitmask(nas_eps, "gprs_timer_3_T3412_extended_value", texts.t3412_extended_bitmask);
    carry_bitmask(nas_eps, "gprs_timer_2_T3324_value", texts.t3324_bitmask);
}

}  // namespace

void carry_texts(nlohmann::json& result, profile_texts& texts) {
    carry_lte_rrc(result, texts);
    carry_bitmasks(result, texts);
}

void map_packet(sink_context& context, const nlohmann::json& packet, nlohmann::json& result) {
    const auto parser = std::ranges::find_if(
        context.parsers, [&packet](const auto& candidate) { return candidate->accepts(packet); });
    if (parser == context.parsers.end()) {
        return;
    }
    (*parser)->parse(packet, result);

    carry_lte_rrc(result, context.texts);
    carry_pdn(result, context.carried_state);
    carry_bitmasks(result, context.texts);
    write_parameter_file(context);
}

}  // namespace KIVRA::TSHARK::PROFILE
