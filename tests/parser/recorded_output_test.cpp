/// The parsers on what four versions of tshark print for the sample captures.

#include <filesystem>
#include <map>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/output_processing.h"
#include "parser/parser_registry.h"
#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using TESTING::data_file;
using testing::IsEmpty;

/// The result document of each record, by the name of its trace and of its file.
using results_by_record = std::map<std::string, json>;

json parse_packets(const parser_registry& parsers, const json& packets) {
    json result;
    for (const auto& packet : packets) {
        for (const auto& parser : parsers) {
            if (parser->accepts(packet)) {
                parser->parse(packet, result);
                break;
            }
        }
    }
    return result;
}

results_by_record parse_output_of(const std::string& version) {
    TESTING::log_recorder log;
    const parser_registry parsers = make_parser_registry(&log, &TESTING::log_recorder::callback);
    results_by_record results;
    for (const std::string trace : {"ltem_attach_psm", "nbiot_attach"}) {
        const auto folder = data_file("tshark-json") / version / trace;
        for (const auto& name : TESTING::names_in(folder)) {
            const std::string output =
                ANALYSIS::number_repeated_names(TESTING::read_file(folder / name));
            results[(std::filesystem::path(trace) / name).generic_string()] =
                parse_packets(parsers, json::parse(output));
        }
    }
    EXPECT_EQ(results.size(), 29);
    EXPECT_THAT(log.messages(), IsEmpty());
    return results;
}

/// The object with the older names of its fields, as deep as it goes.
json with_older_names(const json& value) {
    if (!value.is_object()) {
        return value;
    }
    json renamed = json::object();
    for (const auto& [name, member] : value.items()) {
        const std::string older = name.starts_with("nas-eps.") ? "nas_eps." + name.substr(8) : name;
        renamed[older] = with_older_names(member);
    }
    return renamed;
}

results_by_record with_older_names_in_copies(results_by_record results) {
    for (auto& [record, result] : results) {
        for (const char* copy :
             {"pdn", "apn_aggregate_maximum_bit_rate", "dns_server_address_config"}) {
            if (result.is_object() && result.contains("nas-eps") &&
                result["nas-eps"].contains(copy)) {
                result["nas-eps"][copy] = with_older_names(result["nas-eps"][copy]);
            }
        }
    }
    return results;
}

/// "0x41" as 3.4 prints it: "65".
std::string as_decimal(const std::string& hex) {
    return std::to_string(std::stoi(hex, nullptr, 16));
}

/// "0x5e" as 3.4 prints it: "0x0000005e".
std::string as_wide_hex(const std::string& hex) {
    return "0x000000" + hex.substr(2);
}

/// A result of version 4.0, changed to what version 3.4 gives.
json as_version_3_4(json result) {
    if (!result.is_object() || !result.contains("nas-eps")) {
        return result;
    }
    json& nas_eps = result["nas-eps"];
    for (const char* name : {"mcc_code", "mnc_code", "mcc", "mnc"}) {
        nas_eps.erase(name);
    }
    const auto change = [](json& object, const char* member, const auto& print) {
        if (object.contains(member)) {
            object[member] = print(object[member].get<std::string>());
        }
    };
    change(nas_eps, "nas_msg_emm_type", as_decimal);
    if (nas_eps.contains("pdn")) {
        change(nas_eps["pdn"], "nas_eps.spare_bits", as_wide_hex);
        change(nas_eps["apn_aggregate_maximum_bit_rate"], "nas_eps.esm.elem_id", as_wide_hex);
    }
    return result;
}

class recorded_output : public testing::Test {
  protected:
    static const results_by_record& version_4_0() {
        static const results_by_record results = parse_output_of("4.0.17");
        return results;
    }
};

TEST_F(recorded_output, gives_the_paging_and_drx_values) {
    EXPECT_EQ(version_4_0().at("ltem_attach_psm/01.json"),
              json::parse(R"({"lte-rrc": {"idrx_int": "1.28", "idrx_reps": "16"}})"));
    EXPECT_EQ(version_4_0().at("ltem_attach_psm/03.json"), json::parse(R"({"lte-rrc": {
                  "cdrx_int": "30", "cdrx_on_duration": "10", "cdrx_inactive_timer": "100",
                  "connection_state": "rrcConnectionSetup"}})"));
    EXPECT_EQ(version_4_0().at("nbiot_attach/01.json"),
              json::parse(R"({"lte-rrc": {"idrx_int": "0.64", "idrx_reps": "64"}})"));
}

TEST_F(recorded_output, gives_all_of_an_attach_accept) {
    EXPECT_EQ(version_4_0().at("ltem_attach_psm/13.json"), json::parse(R"({"nas-eps": {
        "accept": "1",
        "apn": "iot.example.mnc002.mcc262.gprs",
        "apn_aggregate_maximum_bit_rate": {
            "APN_AMBR_downlink_kbps": 568,
            "APN_AMBR_uplink_kbps": 576,
            "gsm_a.len": "2",
            "nas_eps.esm.apn_ambr_dl": "127",
            "nas_eps.esm.apn_ambr_ul": "128",
            "nas_eps.esm.elem_id": "0x5e"
        },
        "dns_server_address_config": {
            "Options: (12 bytes), Primary DNS Server IP Address, Secondary DNS Server IP Address": {
                "ipcp.opt.pri_dns": "81:06:08:08:08:08",
                "ipcp.opt.pri_dns_tree": {"ipcp.opt.length": "6",
                                          "ipcp.opt.pri_dns_address": "8.8.8.8",
                                          "ipcp.opt.type": "129"},
                "ipcp.opt.sec_dns": "83:06:08:08:04:04",
                "ipcp.opt.sec_dns_tree": {"ipcp.opt.length": "6",
                                          "ipcp.opt.sec_dns_address": "8.8.4.4",
                                          "ipcp.opt.type": "131"}
            },
            "ppp.code": "3",
            "ppp.identifier": "1",
            "ppp.length": "16"
        },
        "gprs_timer_2_T3324_value": {"bitmask": "00000101", "unit": "seconds", "value": 10},
        "gprs_timer_3_T3412_extended_value": {"bitmask": "01000111", "unit": "hours", "value": 70},
        "gprs_timer_T3402_extended_value": {"bitmask": "00101100", "unit": "minutes", "value": 12},
        "gprs_timer_T3412_value": {"bitmask": "01001001", "unit": "decihours", "value": 54},
        "mcc": "Germany",
        "mcc_code": 262,
        "mnc": "Vodafone D2 GmbH",
        "mnc_code": 2,
        "nas_msg_emm_type": "0x42",
        "pdn": {
            "gsm_a.len": "5",
            "nas_eps.esm.pdn_ipv4": "10.45.4.23",
            "nas_eps.esm_pdn_type": "1",
            "nas_eps.spare_bits": "0x00"
        },
        "tac": "20001"}})"));
}

TEST_F(recorded_output, gives_the_causes_of_an_accept_and_of_a_reject) {
    EXPECT_EQ(version_4_0().at("nbiot_attach/06.json").at("nas-eps").at("cause"),
              json::parse(R"({"code": 50, "reason": "PDN type IPv4 only allowed"})"));
    EXPECT_EQ(version_4_0().at("nbiot_attach/07.json"), json::parse(R"({"nas-eps": {
        "cause": {"code": 27, "reason": "Missing or unknown APN"},
        "nas_msg_emm_type": "0x44"}})"));
}

TEST_F(recorded_output, gives_the_last_tac_of_a_list_and_the_dns_servers_of_extended_options) {
    const json& nas_eps = version_4_0().at("nbiot_attach/06.json").at("nas-eps");
    EXPECT_EQ(nas_eps.at("tac"), "259");
    EXPECT_EQ(nas_eps.at("dns_server_address_config").at("ppp.code"), "3");
    EXPECT_EQ(nas_eps.at("mnc"), "A1 Telekom Austria");
}

TEST_F(recorded_output, gives_the_switch_off_of_a_detach) {
    EXPECT_EQ(
        version_4_0().at("ltem_attach_psm/21.json"),
        json::parse(R"({"nas-eps": {"nas_eps_emm_switch_off": "1", "nas_msg_emm_type": "0x45"}})"));
}

TEST_F(recorded_output, of_newer_versions_gives_the_same_but_for_names_in_copies) {
    for (const char* version : {"4.4.18", "4.6.9"}) {
        const results_by_record results = parse_output_of(version);
        EXPECT_EQ(with_older_names_in_copies(results), version_4_0()) << version;
        EXPECT_EQ(results.at("ltem_attach_psm/13.json").at("nas-eps").at("pdn"),
                  json::parse(R"({"gsm_a.len": "5", "nas-eps.esm.pdn_ipv4": "10.45.4.23",
                                  "nas-eps.esm_pdn_type": "1", "nas-eps.spare_bits": "0x00"})"))
            << version;
    }
}

TEST_F(recorded_output, of_version_3_4_lacks_the_operator_and_prints_numbers_otherwise) {
    results_by_record expected;
    for (const auto& [record, result] : version_4_0()) {
        expected[record] = as_version_3_4(result);
    }
    EXPECT_EQ(parse_output_of("3.4.10"), expected);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
