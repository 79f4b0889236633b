#include "replay/report/record_details.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

std::vector<detail_value> details_of_nas(const json& nas_eps,
                                         const message_description& message = {}) {
    return details_of({.message = message, .document = {{"nas-eps", nas_eps}}});
}

TEST(record_details, finds_nothing_in_no_document) {
    EXPECT_THAT(details_of({}), IsEmpty());
}

TEST(record_details, reads_rrc_values_as_they_stand) {
    const auto details = details_of({.document = {{"lte-rrc",
                                                   {{"idrx_int", "2.56"},
                                                    {"idrx_reps", "32"},
                                                    {"cdrx_int", "30"},
                                                    {"cdrx_on_duration", "10"},
                                                    {"cdrx_inactive_timer", "100"}}}}});
    EXPECT_THAT(details,
                ElementsAre(FieldsAre("idrx_int", "2.56"), FieldsAre("idrx_reps", "32"),
                            FieldsAre("cdrx_int", "30"), FieldsAre("cdrx_on_duration", "10"),
                            FieldsAre("cdrx_inactive_timer", "100")));
}

TEST(record_details, reads_timers_with_their_octets) {
    const auto details =
        details_of_nas({{"gprs_timer_2_T3324_value",
                         {{"bitmask", "00000101"}, {"unit", "seconds"}, {"value", 10}}},
                        {"gprs_timer_3_T3412_extended_value",
                         {{"bitmask", "11100000"}, {"unit", "deactivated"}, {"value", 0}}},
                        {"gprs_timer_T3412_value", {{"bitmask", "01111111"}}},
                        {"gprs_timer_T3402_extended_value",
                         {{"bitmask", "00101100"}, {"unit", "minutes"}, {"value", 12}}}});
    EXPECT_THAT(details, ElementsAre(FieldsAre("T3324", "10 seconds (00000101)"),
                                     FieldsAre("T3412 extended", "deactivated (11100000)"),
                                     FieldsAre("T3412", "(01111111)"),
                                     FieldsAre("T3402", "12 minutes (00101100)")));
}

TEST(record_details, reads_the_operator) {
    EXPECT_THAT(
        details_of_nas(
            {{"mcc_code", 262}, {"mnc_code", 2}, {"mcc", "Germany"}, {"mnc", "Vodafone D2 GmbH"}}),
        ElementsAre(FieldsAre("operator", "262/2 Vodafone D2 GmbH, Germany")));
    EXPECT_THAT(details_of_nas({{"mcc_code", 1}, {"mnc_code", 1}}),
                ElementsAre(FieldsAre("operator", "1/1")));
}

TEST(record_details, reads_what_an_accept_tells_of_the_bearer) {
    const auto details =
        details_of_nas({{"accept", "1"},
                        {"tac", "7"},
                        {"apn", "iot"},
                        {"nas_eps_emm_switch_off", "1"},
                        {"apn_aggregate_maximum_bit_rate",
                         {{"APN_AMBR_downlink_kbps", 568}, {"APN_AMBR_uplink_kbps", 576}}}});
    EXPECT_THAT(
        details,
        ElementsAre(FieldsAre("attach result", "1"), FieldsAre("tac", "7"), FieldsAre("apn", "iot"),
                    FieldsAre("APN-AMBR downlink", "568 kbit/s"),
                    FieldsAre("APN-AMBR uplink", "576 kbit/s"), FieldsAre("switch off", "1")));
}

TEST(record_details, finds_addresses_in_the_copies_of_every_wireshark) {
    for (const std::string protocol : {"nas_eps", "nas-eps"}) {
        const auto details = details_of_nas(
            {{"pdn",
              {{protocol + ".esm.pdn_ipv4", "10.0.0.1"},
               {protocol + ".esm.pdn_ipv6_if_id", "::1"},
               {"ICMPv6_prefix", "2001:0db8"},
               {"gsm_a.len", "5"}}},
             {"dns_server_address_config",
              {{"Options",
                {{"ipcp.opt.pri_dns_tree", {{"ipcp.opt.pri_dns_address", "8.8.8.8"}}},
                 {"ipcp.opt.sec_dns_tree", {{"ipcp.opt.sec_dns_address", "8.8.4.4"}}}}}}}});
        EXPECT_THAT(details,
                    testing::UnorderedElementsAre(FieldsAre("PDN address", "10.0.0.1"),
                                                  FieldsAre("PDN interface identifier", "::1"),
                                                  FieldsAre("PDN prefix", "2001:0db8"),
                                                  FieldsAre("primary DNS server", "8.8.8.8"),
                                                  FieldsAre("secondary DNS server", "8.8.4.4")));
    }
}

TEST(record_details, marks_what_the_modem_asks_for) {
    EXPECT_THAT(details_of_nas({{"gprs_timer_2_T3324_value",
                                 {{"bitmask", "00000101"}, {"unit", "seconds"}, {"value", 10}}},
                                {"apn", "iot"},
                                {"pdn", {{"nas_eps.esm.pdn_ipv4", "10.0.0.1"}}}},
                               {.name = "Attach request", .kind = message_kind::request}),
                ElementsAre(FieldsAre("requested T3324", "10 seconds (00000101)"),
                            FieldsAre("requested apn", "iot"),
                            FieldsAre("requested PDN address", "10.0.0.1")));
}

TEST(record_details, marks_what_comes_with_a_reject) {
    EXPECT_THAT(details_of_nas({{"gprs_timer_T3402_extended_value",
                                 {{"bitmask", "00101100"}, {"unit", "minutes"}, {"value", 12}}}},
                               {.name = "Attach reject", .kind = message_kind::reject}),
                ElementsAre(FieldsAre("rejected T3402", "12 minutes (00101100)")));
}

TEST(record_details, marks_no_operator_and_no_rrc_value) {
    EXPECT_THAT(details_of({.message = {.kind = message_kind::request},
                            .document = {{"nas-eps", {{"mcc_code", 1}, {"mnc_code", 1}}},
                                         {"lte-rrc", {{"idrx_int", "2.56"}}}}}),
                ElementsAre(FieldsAre("idrx_int", "2.56"), FieldsAre("operator", "1/1")));
}

TEST(record_details, reads_the_cause_of_the_document) {
    EXPECT_THAT(details_of_nas({{"cause", {{"code", 27}, {"reason", "Missing or unknown APN"}}}}),
                ElementsAre(FieldsAre("ESM cause", "27: Missing or unknown APN")));
}

TEST(record_details, prefers_the_causes_of_the_message) {
    EXPECT_THAT(details_of_nas({{"cause", {{"code", 27}, {"reason", "Missing or unknown APN"}}}},
                               {.causes = {{"EMM cause", "15: No suitable cells"},
                                           {"ESM cause", "27: Missing"}}}),
                ElementsAre(FieldsAre("EMM cause", "15: No suitable cells"),
                            FieldsAre("ESM cause", "27: Missing")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
