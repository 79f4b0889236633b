#include "profile/result_mapping.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "profile/parameter_file.h"

namespace KIVRA::TSHARK::PROFILE {

namespace {

void carry_lte_rrc(const nlohmann::json& lte_rrc, profile_texts& texts) {
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

void carry_bitmask(nlohmann::json& nas_eps, std::string_view timer, std::string& text) {
    if (nas_eps.contains(timer)) {
        text = nas_eps[timer]["bitmask"].get<std::string>();
    }
}

void carry_nas_eps(nlohmann::json& nas_eps, sink_context& context) {
    if (nas_eps.contains("pdn")) {
        context.carried_state["nas-eps"]["pdn"] = nas_eps["pdn"];
    }
    carry_bitmask(nas_eps, "gprs_timer_3_T3412_extended_value",
                  context.texts.t3412_extended_bitmask);
    carry_bitmask(nas_eps, "gprs_timer_2_T3324_value", context.texts.t3324_bitmask);
}

}  // namespace

void map_packet(sink_context& context, const nlohmann::json& packet, nlohmann::json& result) {
    const auto parser = std::ranges::find_if(
        context.parsers, [&packet](const auto& candidate) { return candidate->accepts(packet); });
    if (parser == context.parsers.end()) {
        return;
    }
    (*parser)->parse(packet, result);

    if (result.contains("lte-rrc")) {
        carry_lte_rrc(result["lte-rrc"], context.texts);
    }
    if (result.contains("nas-eps")) {
        carry_nas_eps(result["nas-eps"], context);
    }
    write_parameter_file(context);
}

}  // namespace KIVRA::TSHARK::PROFILE
