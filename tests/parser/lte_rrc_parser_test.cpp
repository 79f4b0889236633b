#include "parser/lte_rrc_parser.h"

#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TESTING::log_recorder;
using TESTING::packet_with;
using testing::ThrowsMessage;

class lte_rrc : public testing::Test {
  protected:
    json parse(std::string_view dissection) {
        parser_.parse(packet_with("lte_rrc", dissection), result_);
        return result_;
    }

    json result_;
    log_recorder log_;
    lte_rrc_parser parser_{&log_, &log_recorder::callback};
};

TEST_F(lte_rrc, accepts_packets_with_an_lte_rrc_layer_only) {
    EXPECT_TRUE(parser_.accepts(packet_with("lte_rrc", "{}")));
    EXPECT_FALSE(parser_.accepts(packet_with("nas-eps", "{}")));
    EXPECT_FALSE(parser_.accepts(packet_with("lte-rrc", "{}")));
    EXPECT_FALSE(parser_.accepts(json::parse(R"({"_source": ["layers"]})")));
}

TEST_F(lte_rrc, writes_every_field_it_knows) {
    EXPECT_EQ(parse(R"({"lte_rrc": "LTE Radio Resource Control (RRC) protocol",
                        "a": {"lte-rrc.defaultPagingCycle": "2",
                              "lte-rrc.mpdcch_NumRepetition_Paging_r13": "4"},
                        "b": {"lte-rrc.longDRX_CycleStartOffset": "9",
                              "lte-rrc.onDurationTimer": "7",
                              "lte-rrc.drx_InactivityTimer": "14"},
                        "c": {"lte-rrc.rrcConnectionSetup_element": {}}})"),
              json::parse(R"({"lte-rrc": {"idrx_int": "1.28", "idrx_reps": "16",
                                          "cdrx_int": "30", "cdrx_on_duration": "10",
                                          "cdrx_inactive_timer": "100",
                                          "connection_state": "rrcConnectionSetup"}})"));
    EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(lte_rrc, writes_nothing_for_a_layer_without_fields) {
    EXPECT_EQ(parse("{}"), json());
    EXPECT_EQ(parse(R"("text")"), json());
}

TEST_F(lte_rrc, takes_the_long_cycle_from_the_table_of_all_drx_timers) {
    EXPECT_EQ(parse(R"({"lte-rrc.longDRX_CycleStartOffset": "9"})"),
              json::parse(R"({"lte-rrc": {"cdrx_int": "30"}})"));
}

TEST_F(lte_rrc, takes_the_on_duration_from_the_table_of_all_drx_timers) {
    EXPECT_EQ(parse(R"({"lte-rrc.onDurationTimer": "21"})"),
              json::parse(R"({"lte-rrc": {"cdrx_on_duration": "2560"}})"));
}

TEST_F(lte_rrc, does_not_find_a_drx_field_by_the_beginning_of_its_name) {
    EXPECT_EQ(parse(R"({"lte-rrc.longDRX_CycleStartOffset_tree": {"lte-rrc.sf320": "3"},
                        "lte-rrc.onDurationTimer_r13": "7",
                        "lte-rrc.drx_InactivityTimer_r13": "7"})"),
              json());
}

TEST_F(lte_rrc, does_not_find_a_field_inside_an_array) {
    EXPECT_EQ(parse(R"({"a": [{"lte-rrc.defaultPagingCycle": "2",
                               "lte-rrc.onDurationTimer": "7",
                               "lte-rrc.rrcConnectionRelease_element": {}}]})"),
              json());
}

TEST_F(lte_rrc, names_each_connection_message) {
    for (const std::string name : {"rrcConnectionRequest", "rrcConnectionSetup",
                                   "rrcConnectionSetupComplete", "rrcConnectionRelease"}) {
        const json dissection{{"lte-rrc." + name + "_element", json::object()}};
        EXPECT_EQ(parse(dissection.dump()), (json{{"lte-rrc", {{"connection_state", name}}}}));
    }
}

TEST_F(lte_rrc, takes_a_setup_complete_for_no_setup) {
    EXPECT_EQ(parse(R"({"lte-rrc.rrcConnectionSetupComplete_element":
                           {"lte-rrc.rrcConnectionSetupComplete_r8_element": {}}})"),
              json::parse(R"({"lte-rrc": {"connection_state": "rrcConnectionSetupComplete"}})"));
}

TEST_F(lte_rrc, wants_the_underscore_behind_a_connection_message) {
    EXPECT_EQ(
        parse(R"({"lte-rrc.rrcConnectionRequest": "", "lte-rrc.rrcConnectionReleaseX_": ""})"),
        json());
}

TEST_F(lte_rrc, takes_the_first_connection_message_in_the_order_of_the_table) {
    EXPECT_EQ(parse(R"({"a": {"lte-rrc.rrcConnectionRelease_element": {}},
                        "b": {"lte-rrc.rrcConnectionSetupComplete_element": {}},
                        "c": {"lte-rrc.rrcConnectionSetup_element": {}},
                        "d": {"lte-rrc.rrcConnectionRequest_element": {}}})"),
              json::parse(R"({"lte-rrc": {"connection_state": "rrcConnectionRequest"}})"));
    EXPECT_EQ(parse(R"({"a": {"lte-rrc.rrcConnectionRelease_element": {}},
                        "b": {"lte-rrc.rrcConnectionSetupComplete_element": {}}})"),
              json::parse(R"({"lte-rrc": {"connection_state": "rrcConnectionSetupComplete"}})"));
}

TEST_F(lte_rrc, keeps_what_earlier_packets_gave) {
    parse(R"({"lte-rrc.defaultPagingCycle": "3", "lte-rrc.rrcConnectionSetup_element": ""})");
    EXPECT_EQ(parse(R"({"lte-rrc.onDurationTimer": "0"})"),
              json::parse(R"({"lte-rrc": {"idrx_int": "2.56", "cdrx_on_duration": "1",
                                          "connection_state": "rrcConnectionSetup"}})"));
}

TEST_F(lte_rrc, goes_on_behind_a_value_without_an_entry) {
    EXPECT_EQ(parse(R"({"lte-rrc.defaultPagingCycle": "4", "lte-rrc.onDurationTimer": "99",
                        "lte-rrc.drx_InactivityTimer": "0",
                        "lte-rrc.rrcConnectionRelease_element": {}})"),
              json::parse(R"({"lte-rrc": {"cdrx_inactive_timer": "1",
                                          "connection_state": "rrcConnectionRelease"}})"));
    EXPECT_THAT(log_.messages(),
                ElementsAre("4 defaultPagingCycle mapping not found", "99 mapping not found"));
}

TEST_F(lte_rrc, logs_values_without_an_entry_in_the_order_of_its_members) {
    parse(R"({"lte-rrc.defaultPagingCycle": "91", "lte-rrc.mpdcch_NumRepetition_Paging_r13": "92",
              "lte-rrc.longDRX_CycleStartOffset": "93", "lte-rrc.onDurationTimer": "94",
              "lte-rrc.drx_InactivityTimer": "95"})");
    EXPECT_THAT(log_.messages(), ElementsAre("91 defaultPagingCycle mapping not found",
                                             "92 mpdcch_NumRepetition_Paging_r13 mapping not found",
                                             "93 mapping not found", "94 mapping not found",
                                             "95 mapping not found"));
}

TEST_F(lte_rrc, stops_at_each_value_that_is_no_text_in_the_order_of_its_members) {
    const json fields{
        {"lte-rrc.defaultPagingCycle", "0"},       {"lte-rrc.mpdcch_NumRepetition_Paging_r13", "0"},
        {"lte-rrc.longDRX_CycleStartOffset", "0"}, {"lte-rrc.onDurationTimer", "0"},
        {"lte-rrc.drx_InactivityTimer", "0"},      {"lte-rrc.rrcConnectionSetup_element", ""}};
    json expected;
    for (const auto& [field, member] :
         {std::pair("lte-rrc.defaultPagingCycle", json{{"idrx_int", "0.32"}}),
          std::pair("lte-rrc.mpdcch_NumRepetition_Paging_r13", json{{"idrx_reps", "1"}}),
          std::pair("lte-rrc.longDRX_CycleStartOffset", json{{"cdrx_int", "1"}}),
          std::pair("lte-rrc.onDurationTimer", json{{"cdrx_on_duration", "1"}}),
          std::pair("lte-rrc.drx_InactivityTimer", json{{"cdrx_inactive_timer", "1"}})}) {
        json message = fields;
        message[field] = 0;
        result_ = {};
        EXPECT_THROW(parse(message.dump()), json::type_error) << field;
        EXPECT_EQ(result_, expected) << field;
        expected["lte-rrc"].update(member);
    }
}

TEST_F(lte_rrc, stops_at_a_value_that_is_no_text_and_keeps_what_came_before) {
    EXPECT_THAT(
        [this] {
            parse(R"({"lte-rrc.defaultPagingCycle": "0", "lte-rrc.longDRX_CycleStartOffset": {},
                      "lte-rrc.onDurationTimer": "0"})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is object")));
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_int": "0.32"}})"));
}

TEST_F(lte_rrc, refuses_a_result_whose_member_is_no_object) {
    result_ = json::parse(R"({"lte-rrc": "text"})");
    EXPECT_THAT([this] { parse(R"({"lte-rrc.rrcConnectionRelease_element": {}})"); },
                ThrowsMessage<json::type_error>(
                    HasSubstr("cannot use operator[] with a string argument with string")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
