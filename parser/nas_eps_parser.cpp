#include "parser/nas_eps_parser.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "parser/esm_cause.h"
#include "parser/gprs_timer.h"
#include "parser/nas_field_names.h"
#include "parser/number_conversion.h"
#include "parser/packet_document.h"
#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

using nlohmann::json;

/// 3GPP TS 24.301, 9.9.4.2 (APN aggregate maximum bit rate), octets 3 and 4, in kbit/s.
std::uint16_t ambr_kbps(std::uint8_t code) {
    const std::uint16_t number = code;
    if (number <= 63) {
        return number;
    }
    if (number <= 127) {
        return static_cast<std::uint16_t>(number * 8 - 448);
    }
    if (number <= 254) {
        return static_cast<std::uint16_t>(number * 64 - 7616);
    }
    return 0;
}

std::uint16_t read_ambr(const json& code) {
    return ambr_kbps(static_cast<std::uint8_t>(to_int(code.get<std::string>())));
}

/// Stores a copy of a found value; nothing found changes nothing.
void store_found(const json* found, json& result, std::string_view member) {
    if (found != nullptr) {
        result[nas_eps_result][member] = *found;
    }
}

void store_ambr(const json& dissection, json& result) {
    constexpr std::string_view member = "apn_aggregate_maximum_bit_rate";
    const json* ambr = find_in_tree(dissection, "APN aggregate maximum bit rate");
    if (ambr == nullptr) {
        return;
    }
    result[nas_eps_result][member] = *ambr;
    const json* downlink_code = nas_member(*ambr, "nas_eps.esm.apn_ambr_dl");
    const json* uplink_code = nas_member(*ambr, "nas_eps.esm.apn_ambr_ul");
    if (downlink_code == nullptr || uplink_code == nullptr) {
        return;
    }
    const std::uint16_t downlink = read_ambr(*downlink_code);
    const std::uint16_t uplink = read_ambr(*uplink_code);
    result[nas_eps_result][member]["APN_AMBR_downlink_kbps"] = downlink;
    result[nas_eps_result][member]["APN_AMBR_uplink_kbps"] = uplink;
}

void store_operator(const json& dissection, const operator_list& operators, json& result) {
    const json* guti = find_in_tree(dissection, "EPS mobile identity - GUTI");
    if (guti == nullptr || !guti->contains("e212.gummei.mcc") ||
        !guti->contains("e212.gummei.mnc")) {
        return;
    }
    const std::int32_t mcc = to_int(guti->at("e212.gummei.mcc").get<std::string>());
    const std::int32_t mnc = to_int(guti->at("e212.gummei.mnc").get<std::string>());
    result[nas_eps_result]["mcc_code"] = mcc;
    result[nas_eps_result]["mnc_code"] = mnc;
    if (const json* found = find_operator(operators, mcc, mnc)) {
        result[nas_eps_result]["mcc"] = found->at("countryName").get<std::string>();
        result[nas_eps_result]["mnc"] = found->at("operator").get<std::string>();
    }
}

void store_apn(const json& container, json& result) {
    const json* content = nas_member(container, "nas_eps.emm.esm_msg_cont_tree");
    if (content == nullptr) {
        return;
    }
    const auto name = content->find("Access Point Name");
    if (name == content->end() || !name->contains("gsm_a.gm.sm.apn")) {
        return;
    }
    result[nas_eps_result]["apn"] = name->at("gsm_a.gm.sm.apn").get<std::string>();
}

void store_tracking_area(const json& dissection, json& result) {
    const json* list = find_in_tree(dissection, "Tracking area identity list - TAI list");
    if (list == nullptr) {
        return;
    }
    if (const json* code = nas_member(*list, "nas_eps.emm.tai_tac")) {
        result[nas_eps_result]["tac"] = code->get<std::string>();
    }
}

void store_cause(const json& container, json& result) {
    const json* cause = find_in_tree(container, "ESM cause");
    if (cause == nullptr) {
        return;
    }
    if (const json* text = nas_member(*cause, "nas_eps.esm.cause")) {
        const std::int32_t code = to_int(text->get<std::string>());
        result[nas_eps_result]["cause"]["code"] = code;
        result[nas_eps_result]["cause"]["reason"] = esm_cause_reason(code);
    }
}

/// A cause outside an ESM message container does not count.
void store_session_and_tracking_area(const json& dissection, json& result) {
    const json* container = find_in_tree(dissection, "ESM message container");
    if (container != nullptr) {
        store_apn(*container, result);
    }
    store_tracking_area(dissection, result);
    if (container != nullptr) {
        store_cause(*container, result);
    }
}

/// The extended options count only where there are no plain ones, even if those lack the DNS
/// servers.
void store_dns_servers(const json& dissection, json& result) {
    const json* options = find_in_tree(dissection, "Protocol Configuration Options");
    if (options == nullptr) {
        options = find_in_tree(dissection, "Extended protocol configuration options");
    }
    if (options != nullptr) {
        store_found(find_in_tree(*options, "ipcp"), result, "dns_server_address_config");
    }
}

}  // namespace

bool nas_eps_parser::accepts(const json& packet) const {
    return has_layer(packet, nas_eps_layer);
}

void nas_eps_parser::parse(const json& packet, json& result) const {
    const json& dissection = layer(packet, nas_eps_layer);
    for (const auto& timer : gprs_timers) {
        decode_gprs_timer(packet, result, timer);
    }
    store_found(find_in_tree(dissection, "PDN address"), result, "pdn");
    store_ambr(dissection, result);
    store_operator(dissection, *operators_, result);
    store_session_and_tracking_area(dissection, result);
    store_found(find_nas_field(dissection, "nas_eps.emm.EPS_attach_result"), result, "accept");
    store_dns_servers(dissection, result);
    store_found(find_nas_field(dissection, "nas_eps.emm.switch_off"), result,
                "nas_eps_emm_switch_off");
    store_found(find_nas_field(dissection, "nas_eps.nas_msg_emm_type"), result, "nas_msg_emm_type");
}

}  // namespace KIVRA::TSHARK::PARSER
