#include "parser/nas_eps_parser.h"

#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using TESTING::packet_with;
using testing::ThrowsMessage;

constexpr std::string_view few_operators = R"([
    {"mcc": "262", "mnc": "01", "countryName": "Germany", "operator": "First"},
    {"mcc": "262", "mnc": "15", "countryName": "Germany", "operator": null},
    {"mcc": "901", "mnc": "01", "countryName": null, "operator": "Nowhere"}])";

class nas_eps : public testing::Test {
  protected:
    json parse(std::string_view dissection) {
        parser_.parse(packet_with("nas-eps", dissection), result_);
        return result_;
    }

    /// The result, given what its "nas-eps" holds.
    static json nas_result(std::string_view members) { return {{"nas-eps", json::parse(members)}}; }

    json result_;
    nas_eps_parser parser_{nullptr, nullptr,
                           std::make_shared<const operator_list>(load_operators(few_operators))};
};

/// A message that every step finds something in.
constexpr std::string_view full_message = R"({
    "GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
        "gsm_a.gm.gmm.gprs_timer2_unit": "0", "gsm_a.gm.gmm.gprs_timer2_value": "5"}},
    "GPRS Timer 3 - T3412 extended value": {"gsm_a.gm.gmm.gprs_timer3_tree": {
        "gsm_a.gm.gmm.gprs_timer3_unit": "2", "gsm_a.gm.gmm.gprs_timer3_value": "7"}},
    "GPRS Timer - T3412 value": {"gsm_a.gm.gmm.gprs_timer_tree": {
        "gsm_a.gm.gmm.gprs_timer_unit": "2", "gsm_a.gm.gmm.gprs_timer_value": "9"}},
    "GPRS Timer - T3402 value": {"gsm_a.gm.gmm.gprs_timer_tree": {
        "gsm_a.gm.gmm.gprs_timer_unit": "1", "gsm_a.gm.gmm.gprs_timer_value": "12"}},
    "EPS mobile identity - GUTI": {"e212.gummei.mcc": "262", "e212.gummei.mnc": "1"},
    "ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
        "Access Point Name": {"gsm_a.gm.sm.apn": "iot.example"},
        "PDN address": {"nas_eps.esm.pdn_ipv4": "10.0.0.1"},
        "APN aggregate maximum bit rate": {"nas_eps.esm.apn_ambr_dl": "127",
                                           "nas_eps.esm.apn_ambr_ul": "128"},
        "ESM cause": {"nas_eps.esm.cause": "50"},
        "Protocol Configuration Options": {"ipcp": {"ppp.code": "3"}}}},
    "Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": "20001"},
    "nas_eps.emm.EPS_attach_result": "1",
    "nas_eps.emm.switch_off": "0",
    "nas_eps.nas_msg_emm_type": "0x42"})";

constexpr std::string_view full_result = R"({
    "gprs_timer_2_T3324_value": {"value": 10, "unit": "seconds", "bitmask": "00000101"},
    "gprs_timer_3_T3412_extended_value": {"value": 70, "unit": "hours", "bitmask": "01000111"},
    "gprs_timer_T3412_value": {"value": 54, "unit": "decihours", "bitmask": "01001001"},
    "gprs_timer_T3402_extended_value": {"value": 12, "unit": "minutes", "bitmask": "00101100"},
    "pdn": {"nas_eps.esm.pdn_ipv4": "10.0.0.1"},
    "apn_aggregate_maximum_bit_rate": {
        "nas_eps.esm.apn_ambr_dl": "127", "nas_eps.esm.apn_ambr_ul": "128",
        "APN_AMBR_downlink_kbps": 568, "APN_AMBR_uplink_kbps": 576},
    "mcc_code": 262, "mnc_code": 1, "mcc": "Germany", "mnc": "First",
    "apn": "iot.example",
    "tac": "20001",
    "cause": {"code": 50, "reason": "PDN type IPv4 only allowed"},
    "accept": "1",
    "dns_server_address_config": {"ppp.code": "3"},
    "nas_eps_emm_switch_off": "0",
    "nas_msg_emm_type": "0x42"})";

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
    std::string changed(text);
    for (auto at = changed.find(from); at != std::string::npos;
         at = changed.find(from, at + to.size())) {
        changed.replace(at, from.size(), to);
    }
    return changed;
}

TEST_F(nas_eps, accepts_packets_with_a_nas_eps_layer_only) {
    EXPECT_TRUE(parser_.accepts(packet_with("nas-eps", "{}")));
    EXPECT_TRUE(parser_.accepts(packet_with("nas-eps", R"("text")")));
    EXPECT_FALSE(parser_.accepts(packet_with("nas_eps", "{}")));
    EXPECT_FALSE(parser_.accepts(packet_with("lte_rrc", "{}")));
    EXPECT_FALSE(parser_.accepts(json::parse(R"({"_source": ["layers"]})")));
    EXPECT_FALSE(parser_.accepts(json::parse(R"({"_source": {"layers": ["nas-eps"]}})")));
    EXPECT_FALSE(parser_.accepts(json::parse(R"({"layers": {"nas-eps": {}}})")));
}

TEST_F(nas_eps, writes_every_field_it_knows) {
    EXPECT_EQ(parse(full_message), nas_result(full_result));
}

TEST_F(nas_eps, reads_newer_field_names_and_copies_subtrees_with_them) {
    EXPECT_EQ(parse(replaced(full_message, "nas_eps.", "nas-eps.")),
              nas_result(replaced(full_result, "nas_eps.", "nas-eps.")));
}

TEST_F(nas_eps, writes_nothing_for_a_layer_without_fields) {
    EXPECT_EQ(parse("{}"), json());
    EXPECT_EQ(parse(R"("text")"), json());
    EXPECT_EQ(parse(R"({"gsm_a.L3_protocol_discriminator": "0x02", "a": {"b": {}}})"), json());
}

TEST_F(nas_eps, keeps_what_earlier_packets_gave) {
    parse(full_message);
    EXPECT_EQ(parse("{}"), nas_result(full_result));
}

TEST_F(nas_eps, leaves_other_members_of_the_result_alone) {
    result_ = json::parse(R"({"lte-rrc": {"idrx_int": "1.28"}, "nas-eps": {"other": 1}})");
    EXPECT_EQ(parse(R"({"nas_eps.emm.switch_off": "1"})"),
              json::parse(R"({"lte-rrc": {"idrx_int": "1.28"},
                              "nas-eps": {"other": 1, "nas_eps_emm_switch_off": "1"}})"));
}

TEST_F(nas_eps, replaces_the_pdn_address_as_a_whole) {
    parse(R"({"PDN address": {"nas_eps.esm.pdn_ipv4": "10.0.0.1", "gsm_a.len": "5"}})");
    EXPECT_EQ(parse(R"({"a": {"PDN address": {"nas_eps.esm.pdn_ipv4": "10.0.0.2"}}})"),
              nas_result(R"({"pdn": {"nas_eps.esm.pdn_ipv4": "10.0.0.2"}})"));
}

TEST_F(nas_eps, copies_a_pdn_address_of_any_type) {
    EXPECT_EQ(parse(R"({"PDN address": ["text", 1]})"), nas_result(R"({"pdn": ["text", 1]})"));
}

class nas_eps_bit_rate : public nas_eps {
  protected:
    static constexpr const char* member = "apn_aggregate_maximum_bit_rate";

    json bit_rate_of(std::string_view subtree) {
        return parse(json{{"APN aggregate maximum bit rate", json::parse(subtree)}}.dump())
            .at("nas-eps")
            .at(member);
    }

    std::pair<int, int> kbps_of(const std::string& downlink, const std::string& uplink) {
        const json rate = bit_rate_of(json{
            {"nas_eps.esm.apn_ambr_dl", downlink},
            {"nas_eps.esm.apn_ambr_ul",
             uplink}}.dump());
        return {rate.at("APN_AMBR_downlink_kbps").get<int>(),
                rate.at("APN_AMBR_uplink_kbps").get<int>()};
    }
};

TEST_F(nas_eps_bit_rate, converts_codes_at_every_border) {
    EXPECT_EQ(kbps_of("0", "63"), std::pair(0, 63));
    EXPECT_EQ(kbps_of("1", "62"), std::pair(1, 62));
    EXPECT_EQ(kbps_of("64", "127"), std::pair(64, 568));
    EXPECT_EQ(kbps_of("65", "126"), std::pair(72, 560));
    EXPECT_EQ(kbps_of("128", "254"), std::pair(576, 8640));
    EXPECT_EQ(kbps_of("129", "253"), std::pair(640, 8576));
    EXPECT_EQ(kbps_of("255", "255"), std::pair(0, 0));
}

TEST_F(nas_eps_bit_rate, takes_the_low_octet_of_a_code) {
    EXPECT_EQ(kbps_of("256", "319"), std::pair(0, 63));
    EXPECT_EQ(kbps_of("-1", "-2"), std::pair(0, 8640));
}

TEST_F(nas_eps_bit_rate, stops_reading_at_the_first_character_that_is_no_digit) {
    EXPECT_EQ(kbps_of(" 63 kbps", "+64x"), std::pair(63, 64));
}

TEST_F(nas_eps_bit_rate, is_a_plain_copy_where_a_code_is_missing) {
    for (const char* subtree : {
             R"({"nas_eps.esm.apn_ambr_dl": "127"})",
             R"({"nas_eps.esm.apn_ambr_ul": "127"})",
             R"({"deeper": {"nas_eps.esm.apn_ambr_dl": "1", "nas_eps.esm.apn_ambr_ul": "1"}})",
             R"("text")",
             R"(["nas_eps.esm.apn_ambr_dl", "nas_eps.esm.apn_ambr_ul"])",
         }) {
        EXPECT_EQ(bit_rate_of(subtree), json::parse(subtree)) << subtree;
    }
}

TEST_F(nas_eps_bit_rate, does_not_read_a_code_that_stands_alone) {
    EXPECT_EQ(bit_rate_of(R"({"nas_eps.esm.apn_ambr_dl": {}})"),
              json::parse(R"({"nas_eps.esm.apn_ambr_dl": {}})"));
}

TEST_F(nas_eps_bit_rate, replaces_an_earlier_one_as_a_whole) {
    kbps_of("127", "128");
    EXPECT_EQ(bit_rate_of(R"({"nas_eps.esm.apn_ambr_dl": "1"})"),
              json::parse(R"({"nas_eps.esm.apn_ambr_dl": "1"})"));
}

TEST_F(nas_eps_bit_rate, reads_a_newer_name_beside_an_older_one) {
    EXPECT_EQ(bit_rate_of(R"({"nas_eps.esm.apn_ambr_dl": "1", "nas-eps.esm.apn_ambr_ul": "2"})")
                  .at("APN_AMBR_uplink_kbps"),
              2);
}

TEST_F(nas_eps_bit_rate, keeps_the_copy_alone_when_a_code_fails) {
    EXPECT_THAT([this] { kbps_of("127", "x"); },
                ThrowsMessage<std::invalid_argument>("invalid stoi argument"));
    EXPECT_EQ(result_, nas_result(R"({"apn_aggregate_maximum_bit_rate": {
        "nas_eps.esm.apn_ambr_dl": "127", "nas_eps.esm.apn_ambr_ul": "x"}})"));
}

TEST_F(nas_eps_bit_rate, refuses_codes_that_are_no_text_or_out_of_range) {
    EXPECT_THAT(
        [this] {
            bit_rate_of(R"({"nas_eps.esm.apn_ambr_dl": 1, "nas_eps.esm.apn_ambr_ul": "1"})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is number")));
    EXPECT_THAT([this] { kbps_of("1", "2147483648"); },
                ThrowsMessage<std::out_of_range>("stoi argument out of range"));
}

TEST_F(nas_eps_bit_rate, converts_the_downlink_before_it_reads_the_uplink) {
    EXPECT_THROW(bit_rate_of(R"({"nas_eps.esm.apn_ambr_dl": "x", "nas_eps.esm.apn_ambr_ul": {}})"),
                 std::invalid_argument);
}

class nas_eps_operator : public nas_eps {
  protected:
    json parse_guti(const std::string& mcc, const std::string& mnc) {
        const json guti{{"e212.gummei.mcc", mcc}, {"e212.gummei.mnc", mnc}};
        return parse(json{{"EPS mobile identity - GUTI", guti}}.dump());
    }
};

TEST_F(nas_eps_operator, is_the_same_with_and_without_leading_zeros) {
    const json expected =
        nas_result(R"({"mcc_code": 262, "mnc_code": 1, "mcc": "Germany", "mnc": "First"})");
    for (const char* mnc : {"1", "01", "001"}) {
        result_ = {};
        EXPECT_EQ(parse_guti("262", mnc), expected) << mnc;
    }
}

TEST_F(nas_eps_operator, has_codes_but_no_names_when_the_list_lacks_it) {
    EXPECT_EQ(parse_guti("262", "2"), nas_result(R"({"mcc_code": 262, "mnc_code": 2})"));
}

TEST_F(nas_eps_operator, keeps_the_names_of_an_earlier_one_when_the_list_lacks_it) {
    parse_guti("262", "1");
    EXPECT_EQ(parse_guti("262", "2"),
              nas_result(R"({"mcc_code": 262, "mnc_code": 2, "mcc": "Germany", "mnc": "First"})"));
}

TEST_F(nas_eps_operator, is_not_written_for_an_identity_without_both_codes) {
    for (const char* dissection : {
             R"({"e212.gummei.mcc": "262", "e212.gummei.mnc": "1"})",
             R"({"EPS mobile identity - IMSI": {"e212.gummei.mcc": "262",
                                                "e212.gummei.mnc": "1"}})",
             R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": "262"}})",
             R"({"EPS mobile identity - GUTI": {"e212.gummei.mnc": "1"}})",
             R"({"EPS mobile identity - GUTI": {"deeper": {"e212.gummei.mcc": "262",
                                                           "e212.gummei.mnc": "1"}}})",
             R"({"EPS mobile identity - GUTI": "text"})",
         }) {
        EXPECT_EQ(parse(dissection), json()) << dissection;
    }
}

TEST_F(nas_eps_operator, keeps_the_codes_and_the_country_when_the_operator_has_no_name) {
    EXPECT_THAT([this] { parse_guti("262", "15"); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is null"));
    EXPECT_EQ(result_, nas_result(R"({"mcc_code": 262, "mnc_code": 15, "mcc": "Germany"})"));
}

TEST_F(nas_eps_operator, keeps_the_codes_when_the_country_has_no_name) {
    EXPECT_THAT([this] { parse_guti("901", "1"); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is null"));
    EXPECT_EQ(result_, nas_result(R"({"mcc_code": 901, "mnc_code": 1})"));
}

TEST_F(nas_eps_operator, is_looked_up_in_the_built_in_list_by_default) {
    const nas_eps_parser parser(nullptr, nullptr);
    const auto parse_with_default = [this, &parser](const char* mcc, const char* mnc) {
        const json guti{{"e212.gummei.mcc", mcc}, {"e212.gummei.mnc", mnc}};
        result_ = {};
        parser.parse(packet_with("nas-eps", json{{"EPS mobile identity - GUTI", guti}}.dump()),
                     result_);
        return result_;
    };
    EXPECT_EQ(parse_with_default("234", "3"), (json{{"nas-eps",
                                                     {{"mcc_code", 234},
                                                      {"mnc_code", 3},
                                                      {"mcc", "Guernsey (United Kingdom)"},
                                                      {"mnc", "Guernsey Airtel Ltd"}}}}));
    EXPECT_THROW(parse_with_default("262", "15"), json::type_error);
    EXPECT_EQ(result_, nas_result(R"({"mcc_code": 262, "mnc_code": 15, "mcc": "Germany"})"));
    EXPECT_THAT([&] { parse_with_default("001", "01"); },
                ThrowsMessage<std::invalid_argument>("invalid stoi argument"));
    EXPECT_EQ(result_, nas_result(R"({"mcc_code": 1, "mnc_code": 1})"));
}

TEST_F(nas_eps_operator, refuses_codes_that_are_no_numbers) {
    EXPECT_THAT([this] { parse_guti("x", "1"); },
                ThrowsMessage<std::invalid_argument>("invalid stoi argument"));
    EXPECT_THAT([this] { parse_guti("262", ""); },
                ThrowsMessage<std::invalid_argument>("invalid stoi argument"));
    EXPECT_THAT([this] { parse_guti("262", "2147483648"); },
                ThrowsMessage<std::out_of_range>("stoi argument out of range"));
    EXPECT_EQ(result_, json());
}

TEST_F(nas_eps_operator, refuses_codes_that_are_no_text) {
    EXPECT_THAT(
        [this] {
            parse(R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": "262",
                                                     "e212.gummei.mnc": ["1"]}})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is array")));
    EXPECT_EQ(result_, json());
}

TEST_F(nas_eps_operator, has_its_mcc_converted_before_its_mnc_is_read) {
    EXPECT_THROW(parse(R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": "x",
                                                          "e212.gummei.mnc": {}}})"),
                 std::invalid_argument);
}

TEST_F(nas_eps, takes_an_access_point_name_on_its_exact_path_only) {
    for (const char* dissection : {
             R"({"Access Point Name": {"gsm_a.gm.sm.apn": "x"}})",
             R"({"ESM message container": "text"})",
             R"({"ESM message container": {"Access Point Name": {"gsm_a.gm.sm.apn": "x"}}})",
             R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": "text"}})",
             R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                    "gsm_a.gm.sm.apn": "x"}}})",
             R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                    "Access Point Name": "x"}}})",
             R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                    "Access Point Name": {"deeper": {"gsm_a.gm.sm.apn": "x"}}}}})",
             R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                    "deeper": {"Access Point Name": {"gsm_a.gm.sm.apn": "x"}}}}})",
         }) {
        EXPECT_EQ(parse(dissection), json()) << dissection;
    }
}

TEST_F(nas_eps, takes_tracking_area_and_cause_of_a_message_without_access_point_name) {
    EXPECT_EQ(parse(R"({"ESM message container": {"ESM cause": {"nas_eps.esm.cause": "27"}},
                        "Tracking area identity list - TAI list":
                            {"nas_eps.emm.tai_tac": "259"}})"),
              nas_result(R"({"tac": "259", "cause": {"code": 27,
                                                     "reason": "Missing or unknown APN"}})"));
}

TEST_F(nas_eps, takes_a_tracking_area_without_a_container) {
    EXPECT_EQ(parse(R"({"a": {"Tracking area identity list - TAI list":
                                 {"nas_eps.emm.tai_tac": "0x4e21"}}})"),
              nas_result(R"({"tac": "0x4e21"})"));
}

TEST_F(nas_eps, takes_the_tracking_area_code_as_a_direct_member_of_its_list_only) {
    for (const char* dissection : {
             R"({"nas_eps.emm.tai_tac": "1"})",
             R"({"Tracking area identity list - TAI list": "text"})",
             R"({"Tracking area identity list - TAI list": {"nas_eps.emm.tai_n_elem": "1"}})",
             R"({"Tracking area identity list - TAI list":
                    {"deeper": {"nas_eps.emm.tai_tac": "1"}}})",
         }) {
        EXPECT_EQ(parse(dissection), json()) << dissection;
    }
}

TEST_F(nas_eps, replaces_an_earlier_tracking_area_by_a_later_one) {
    parse(R"({"Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": "1"}})");
    EXPECT_EQ(parse(R"({"Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": "2"}})"),
              nas_result(R"({"tac": "2"})"));
    EXPECT_EQ(parse("{}"), nas_result(R"({"tac": "2"})"));
}

class nas_eps_cause : public nas_eps {
  protected:
    json cause_of(const std::string& code) {
        const json cause{{"nas_eps.esm.cause", code}};
        return parse(json{{"ESM message container", {{"a", {{"ESM cause", cause}}}}}}.dump())
            .at("nas-eps")
            .at("cause");
    }
};

TEST_F(nas_eps_cause, has_a_code_and_a_reason) {
    EXPECT_EQ(cause_of("27"), (json{{"code", 27}, {"reason", "Missing or unknown APN"}}));
    EXPECT_TRUE(cause_of("27").at("code").is_number_integer());
}

TEST_F(nas_eps_cause, is_searched_for_in_the_whole_container) {
    const json expected{{"code", 27}, {"reason", "Missing or unknown APN"}};
    for (const char* container : {
             R"({"ESM cause": {"nas_eps.esm.cause": "27"}})",
             R"({"nas_eps.emm.esm_msg_cont_tree": {"ESM cause": {"nas_eps.esm.cause": "27"}}})",
             R"({"a": {"b": {"c": {"ESM cause": {"nas_eps.esm.cause": "27"}}}},
                 "nas_eps.emm.esm_msg_cont_tree": {}})",
             R"({"nas_eps.emm.esm_msg_cont_tree": {},
                 "z": {"z": {"ESM cause": {"nas_eps.esm.cause": "27"}}}})",
         }) {
        result_ = {};
        const json message{{"ESM message container", json::parse(container)}};
        EXPECT_EQ(parse(message.dump()), (json{{"nas-eps", {{"cause", expected}}}})) << container;
    }
}

TEST_F(nas_eps_cause, has_an_undefined_reason_without_a_row) {
    EXPECT_EQ(cause_of("1"), (json{{"code", 1}, {"reason", "undefined reason"}}));
}

TEST_F(nas_eps_cause, keeps_the_whole_code_though_its_low_octet_decides) {
    EXPECT_EQ(cause_of("283"), (json{{"code", 283}, {"reason", "Missing or unknown APN"}}));
    EXPECT_EQ(cause_of("264"), (json{{"code", 264}, {"reason", "Operator Determined Barring"}}));
    EXPECT_EQ(cause_of("-1"), (json{{"code", -1}, {"reason", "undefined reason"}}));
}

TEST_F(nas_eps_cause, replaces_the_members_of_an_earlier_one_one_by_one) {
    result_ = nas_result(R"({"cause": {"code": 27, "other": 1}})");
    EXPECT_EQ(cause_of("8"),
              (json{{"code", 8}, {"reason", "Operator Determined Barring"}, {"other", 1}}));
}

TEST_F(nas_eps_cause, does_not_count_outside_a_container) {
    EXPECT_EQ(parse(R"({"ESM cause": {"nas_eps.esm.cause": "27"},
                        "ESM message container": {"nas_eps.emm.esm_msg_cont": "d0:11"}})"),
              json());
    EXPECT_EQ(parse(R"({"ESM cause": {"nas_eps.esm.cause": "27"}})"), json());
}

TEST_F(nas_eps_cause, is_a_direct_member_of_its_element) {
    for (const char* dissection : {
             R"({"ESM message container": {"nas_eps.esm.cause": "27"}})",
             R"({"ESM message container": {"ESM cause": "27"}})",
             R"({"ESM message container": {"ESM cause": {"a": {"nas_eps.esm.cause": "27"}}}})",
         }) {
        EXPECT_EQ(parse(dissection), json()) << dissection;
    }
}

TEST_F(nas_eps_cause, that_is_no_number_fails_behind_apn_and_tracking_area) {
    constexpr std::string_view message = R"({
        "ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
            "Access Point Name": {"gsm_a.gm.sm.apn": "x"},
            "ESM cause": {"nas_eps.esm.cause": CODE}}},
        "Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": "1"},
        "nas_eps.emm.EPS_attach_result": "1"})";
    EXPECT_THAT([&] { parse(replaced(message, "CODE", R"("none")")); },
                ThrowsMessage<std::invalid_argument>("invalid stoi argument"));
    EXPECT_THAT([&] { parse(replaced(message, "CODE", R"("2147483648")")); },
                ThrowsMessage<std::out_of_range>("stoi argument out of range"));
    EXPECT_THAT([&] { parse(replaced(message, "CODE", "27")); },
                ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is number")));
    EXPECT_EQ(result_, nas_result(R"({"apn": "x", "tac": "1"})"));
}

TEST_F(nas_eps, refuses_an_access_point_name_that_is_no_text_before_the_tracking_area) {
    EXPECT_THAT(
        [this] {
            parse(R"({"PDN address": "a",
                      "ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                          "Access Point Name": {"gsm_a.gm.sm.apn": {}}}},
                      "Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": "1"}})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is object")));
    EXPECT_EQ(result_, nas_result(R"({"pdn": "a"})"));
}

TEST_F(nas_eps, refuses_a_tracking_area_code_that_is_no_text_before_the_cause) {
    EXPECT_THAT(
        [this] {
            parse(R"({"ESM message container": {"nas_eps.emm.esm_msg_cont_tree": {
                          "Access Point Name": {"gsm_a.gm.sm.apn": "x"},
                          "ESM cause": {"nas_eps.esm.cause": "27"}}},
                      "Tracking area identity list - TAI list": {"nas_eps.emm.tai_tac": true}})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is boolean")));
    EXPECT_EQ(result_, nas_result(R"({"apn": "x"})"));
}

TEST_F(nas_eps, takes_dns_servers_from_the_plain_options_first) {
    EXPECT_EQ(parse(R"({"Extended protocol configuration options": {"ipcp": "extended"},
                        "Protocol Configuration Options": {"a": {"ipcp": "plain"}}})"),
              nas_result(R"({"dns_server_address_config": "plain"})"));
}

TEST_F(nas_eps, takes_dns_servers_from_the_extended_options_where_there_are_no_plain_ones) {
    EXPECT_EQ(parse(R"({"Extended protocol configuration options":
                           {"a": {"ipcp": {"ppp.code": "3"}}}})"),
              nas_result(R"({"dns_server_address_config": {"ppp.code": "3"}})"));
}

TEST_F(nas_eps, takes_no_dns_servers_from_the_extended_options_where_the_plain_ones_lack_them) {
    EXPECT_EQ(parse(R"({"Extended protocol configuration options": {"ipcp": "extended"},
                        "Protocol Configuration Options": {"a": {}}})"),
              json());
    EXPECT_EQ(parse(R"({"Extended protocol configuration options": {"ipcp": "extended"},
                        "Protocol Configuration Options": "text"})"),
              json());
}

TEST_F(nas_eps, takes_no_dns_servers_from_outside_the_options) {
    EXPECT_EQ(parse(R"({"ipcp": "x", "Extended protocol configuration options": {}})"), json());
}

TEST_F(nas_eps, takes_the_first_dns_servers_of_the_walk) {
    EXPECT_EQ(parse(R"({"Protocol Configuration Options":
                           {"a": {"b": {"ipcp": "deep"}}, "ipcp": "direct", "z": {"ipcp": "z"}}})"),
              nas_result(R"({"dns_server_address_config": "deep"})"));
    EXPECT_EQ(parse(R"({"Protocol Configuration Options": {"ipcp": {"ipcp": "inner"}}})"),
              nas_result(R"({"dns_server_address_config": {"ipcp": "inner"}})"));
}

TEST_F(nas_eps, copies_result_switch_off_and_type_from_any_depth_and_of_any_type) {
    EXPECT_EQ(parse(R"({"a": {"nas_eps.emm.EPS_attach_result": ["2"]},
                        "b": {"nas-eps.emm.switch_off": true},
                        "c": {"nas_eps.nas_msg_emm_type": {"x": null}}})"),
              nas_result(R"({"accept": ["2"], "nas_eps_emm_switch_off": true,
                             "nas_msg_emm_type": {"x": null}})"));
}

TEST_F(nas_eps, does_not_find_a_field_inside_an_array) {
    EXPECT_EQ(parse(json{{"a", json::array({json::parse(full_message)})}}.dump()), json());
}

TEST_F(nas_eps, stops_at_a_timer_that_fails_and_keeps_the_timers_before) {
    const std::string message = replaced(full_message, R"("gsm_a.gm.gmm.gprs_timer_value": "9")",
                                         R"("gsm_a.gm.gmm.gprs_timer_value": "nine")");
    EXPECT_THAT([&] { parse(message); },
                ThrowsMessage<std::invalid_argument>("invalid stoul argument"));
    EXPECT_EQ(result_, nas_result(R"({
        "gprs_timer_2_T3324_value": {"value": 10, "unit": "seconds", "bitmask": "00000101"},
        "gprs_timer_3_T3412_extended_value":
            {"value": 70, "unit": "hours", "bitmask": "01000111"}})"));
}

TEST_F(nas_eps, decodes_t3402_last_of_the_timers) {
    const std::string message = replaced(full_message, R"("gsm_a.gm.gmm.gprs_timer_value": "12")",
                                         R"("gsm_a.gm.gmm.gprs_timer_value": null)");
    EXPECT_THROW(parse(message), json::type_error);
    EXPECT_TRUE(result_.at("nas-eps").contains("gprs_timer_T3412_value"));
    EXPECT_EQ(result_.at("nas-eps").size(), 3);
}

TEST_F(nas_eps, stops_at_a_bit_rate_that_fails_behind_the_pdn_address) {
    const std::string message = replaced(full_message, R"("nas_eps.esm.apn_ambr_ul": "128")",
                                         R"("nas_eps.esm.apn_ambr_ul": "x")");
    EXPECT_THROW(parse(message), std::invalid_argument);
    EXPECT_EQ(result_.at("nas-eps").at("pdn"), (json{{"nas_eps.esm.pdn_ipv4", "10.0.0.1"}}));
    EXPECT_TRUE(result_.at("nas-eps").contains("apn_aggregate_maximum_bit_rate"));
    EXPECT_EQ(result_.at("nas-eps").size(), 6);
}

TEST_F(nas_eps, stops_at_an_operator_that_fails_between_bit_rate_and_access_point_name) {
    const std::string message =
        replaced(full_message, R"("e212.gummei.mnc": "1")", R"("e212.gummei.mnc": "x")");
    EXPECT_THROW(parse(message), std::invalid_argument);
    EXPECT_TRUE(result_.at("nas-eps").contains("pdn"));
    EXPECT_TRUE(result_.at("nas-eps").contains("apn_aggregate_maximum_bit_rate"));
    EXPECT_EQ(result_.at("nas-eps").size(), 6);
}

TEST_F(nas_eps, refuses_a_result_that_holds_no_object_to_write_into) {
    for (const char* result : {R"({"nas-eps": "text"})", R"("text")"}) {
        result_ = json::parse(result);
        EXPECT_THAT([this] { parse(R"({"nas_eps.emm.switch_off": "1"})"); },
                    ThrowsMessage<json::type_error>(
                        HasSubstr("[json.exception.type_error.305] cannot use operator[] with a "
                                  "string argument with string")))
            << result;
    }
}

TEST_F(nas_eps_cause, refuses_a_result_whose_cause_is_no_object) {
    result_ = nas_result(R"({"cause": [27]})");
    EXPECT_THAT([this] { cause_of("27"); },
                ThrowsMessage<json::type_error>(
                    HasSubstr("cannot use operator[] with a string argument with array")));
}

TEST_F(nas_eps_bit_rate, replaces_a_result_that_is_no_object) {
    result_ = nas_result(R"({"apn_aggregate_maximum_bit_rate": "text"})");
    EXPECT_EQ(kbps_of("1", "2"), std::pair(1, 2));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
