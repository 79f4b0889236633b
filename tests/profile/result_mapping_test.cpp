#include "profile/result_mapping.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "profile/profile_values.h"
#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PROFILE {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using TESTING::packet_with;
using testing::ThrowsMessage;

class result_mapping : public TESTING::scratch_test {
  protected:
    /// Sends a packet through the step whose parser finds nothing in it, so that the step sees the
    /// result document as the test has set it.
    void carry(const char* result) {
        result_ = json::parse(result);
        map_packet(context_, packet_with("lte_rrc", "{}"), result_);
    }

    json profile() { return TESTING::read_json("profile.json"); }

    json result_;
    sink_context context_{nullptr, nullptr, "tshark.exe", scratch() / "output.json",
                          "profile.json"};
};

TEST_F(result_mapping, carries_every_lte_rrc_member_into_the_profile) {
    carry(R"({"lte-rrc": {"cdrx_int": "1", "cdrx_on_duration": "2", "cdrx_inactive_timer": "3",
                          "idrx_reps": "4", "idrx_int": "5"}})");
    EXPECT_EQ(profile()["cdrx_int"], "1");
    EXPECT_EQ(profile()["cdrx_on_duration"], "2");
    EXPECT_EQ(profile()["cdrx_inactive_timer"], "3");
    EXPECT_EQ(profile()["idrx_reps"], "4");
    EXPECT_EQ(profile()["idrx_int"], "5");
}

TEST_F(result_mapping, carries_both_timer_bitmasks_into_the_profile) {
    carry(R"({"lte-rrc": {"idrx_reps": "4", "idrx_int": "5"},
              "nas-eps": {"gprs_timer_3_T3412_extended_value": {"bitmask": "01000111"},
                          "gprs_timer_2_T3324_value": {"bitmask": "00000101"}}})");
    EXPECT_EQ(profile()["psm"], "True");
    EXPECT_EQ(profile()["config_lte_psm_req_rptau"], "01000111");
    EXPECT_EQ(profile()["config_lte_psm_req_rat"], "00000101");
}

TEST_F(result_mapping, carries_the_pdn_whole_into_the_carried_state) {
    carry(R"({"nas-eps": {"pdn": {"a": ["b", null]}, "apn": "x"}})");
    EXPECT_EQ(context_.carried_state, json::parse(R"({"nas-eps": {"pdn": {"a": ["b", null]}}})"));
}

TEST_F(result_mapping, replaces_the_carried_pdn_an_earlier_prefix_included) {
    context_.carried_state =
        json::parse(R"({"nas-eps": {"pdn": {"ICMPv6_prefix": "2001:", "old": "1"}}})");
    carry(R"({"nas-eps": {"pdn": {"new": "2"}}})");
    EXPECT_EQ(context_.carried_state, json::parse(R"({"nas-eps": {"pdn": {"new": "2"}}})"));
}

TEST_F(result_mapping, carries_a_pdn_that_is_no_object) {
    carry(R"({"nas-eps": {"pdn": "text"}})");
    EXPECT_EQ(context_.carried_state, json::parse(R"({"nas-eps": {"pdn": "text"}})"));
}

TEST_F(result_mapping, keeps_a_text_whose_member_is_absent) {
    context_.texts.cdrx_int = "kept";
    carry(R"({"lte-rrc": {"idrx_reps": "4", "idrx_int": "5"}})");
    EXPECT_EQ(profile()["cdrx_int"], "kept");
}

TEST_F(result_mapping, falls_back_to_the_default_after_a_write_when_a_member_is_gone) {
    carry(R"({"lte-rrc": {"cdrx_int": "1", "idrx_reps": "4", "idrx_int": "5"}})");
    carry(R"({"lte-rrc": {"idrx_reps": "4", "idrx_int": "5"}})");
    EXPECT_EQ(profile()["cdrx_int"], "0");
}

TEST_F(result_mapping, carries_nas_values_without_lte_rrc_but_writes_no_file) {
    carry(R"({"nas-eps": {"gprs_timer_2_T3324_value": {"bitmask": "00000101"}}})");
    EXPECT_EQ(context_.texts.t3324_bitmask, "00000101");
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(result_mapping, finds_nothing_in_protocols_that_are_no_objects) {
    context_.texts.idrx_int = "5";
    carry(R"({"lte-rrc": "idrx_int", "nas-eps": ["pdn"]})");
    EXPECT_EQ(context_.texts.idrx_int, "5");
    EXPECT_TRUE(context_.carried_state.is_null());
}

TEST_F(result_mapping, does_nothing_for_a_packet_that_no_parser_accepts) {
    context_.texts.idrx_int = "5";
    context_.texts.idrx_reps = "4";
    result_ = json::parse(R"({"lte-rrc": {"cdrx_int": "1"}, "nas-eps": {"pdn": "text"}})");
    map_packet(context_, packet_with("gsm_a", "{}"), result_);
    EXPECT_EQ(context_.texts.cdrx_int, "");
    EXPECT_TRUE(context_.carried_state.is_null());
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(result_mapping, lets_the_accepting_parser_write_into_the_result) {
    map_packet(context_, packet_with("lte_rrc", R"({"lte-rrc.defaultPagingCycle": "3"})"), result_);
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_int": "2.56"}})"));
    EXPECT_EQ(context_.texts.idrx_int, "2.56");
}

TEST_F(result_mapping, lets_the_first_accepting_parser_alone_parse_the_packet) {
    const json packet = json::parse(R"({"_source": {"layers": {
        "nas-eps": {"nas_eps.emm.switch_off": "1", "lte-rrc.defaultPagingCycle": "0"},
        "lte_rrc": {"lte-rrc.defaultPagingCycle": "3", "nas_eps.emm.switch_off": "0"}}}})");
    map_packet(context_, packet, result_);
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_int": "2.56"}})"));
}

TEST_F(result_mapping, refuses_a_member_that_is_no_text_and_keeps_what_came_before) {
    EXPECT_THAT(
        [this] {
            carry(R"({"lte-rrc": {"cdrx_int": "1", "cdrx_on_duration": 2, "idrx_reps": "4",
                                  "idrx_int": "5"}})");
        },
        ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is number")));
    EXPECT_EQ(context_.texts.cdrx_int, "1");
    EXPECT_EQ(context_.texts.idrx_reps, "");
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(result_mapping, carries_lte_rrc_members_in_their_order) {
    EXPECT_ANY_THROW(carry(R"({"lte-rrc": {"cdrx_int": "1", "cdrx_on_duration": "2",
                                           "cdrx_inactive_timer": "3", "idrx_reps": null,
                                           "idrx_int": "5"}})"));
    EXPECT_EQ(context_.texts.cdrx_inactive_timer, "3");
    EXPECT_EQ(context_.texts.idrx_int, "");
}

TEST_F(result_mapping, carries_each_lte_rrc_member_before_the_next) {
    json members = json::object();
    for (const char* member :
         {"cdrx_int", "cdrx_on_duration", "cdrx_inactive_timer", "idrx_reps", "idrx_int"}) {
        members[member] = "1";
    }
    std::size_t carried = 0;
    for (const auto& value : drx_values) {
        json result{{"lte-rrc", members}};
        result["lte-rrc"][value.file_member] = 1;
        context_.texts = {};
        EXPECT_ANY_THROW(carry(result.dump().c_str())) << value.file_member;
        const std::vector<std::string> texts{
            context_.texts.cdrx_int, context_.texts.cdrx_on_duration,
            context_.texts.cdrx_inactive_timer, context_.texts.idrx_reps, context_.texts.idrx_int};
        std::vector<std::string> expected(carried++, "1");
        expected.resize(texts.size());
        EXPECT_EQ(texts, expected) << value.file_member;
    }
}

TEST_F(result_mapping, carries_lte_rrc_members_before_the_pdn) {
    EXPECT_ANY_THROW(carry(R"({"lte-rrc": {"idrx_int": 5}, "nas-eps": {"pdn": "text"}})"));
    EXPECT_TRUE(context_.carried_state.is_null());
}

TEST_F(result_mapping, carries_the_pdn_before_the_timers_and_t3412_before_t3324) {
    EXPECT_ANY_THROW(carry(R"({"nas-eps": {
        "pdn": "text",
        "gprs_timer_3_T3412_extended_value": {"bitmask": "01000111"},
        "gprs_timer_2_T3324_value": {"bitmask": 5}}})"));
    EXPECT_EQ(context_.carried_state, json::parse(R"({"nas-eps": {"pdn": "text"}})"));
    EXPECT_EQ(context_.texts.t3412_extended_bitmask, "01000111");
}

TEST_F(result_mapping, refuses_a_timer_without_bitmask_and_leaves_the_result_as_it_is) {
    for (const char* timer : {R"({"value": 1})", "{}", "null"}) {
        const json result{{"nas-eps", {{"gprs_timer_2_T3324_value", json::parse(timer)}}}};
        EXPECT_THAT([&] { carry(result.dump().c_str()); },
                    ThrowsMessage<json::type_error>(
                        "[json.exception.type_error.302] type must be string, but is null"))
            << timer;
        EXPECT_EQ(result_, result);
    }
}

TEST_F(result_mapping, writes_no_file_for_a_packet_that_fails_with_both_idrx_texts_known) {
    EXPECT_ANY_THROW(carry(R"({"lte-rrc": {"idrx_reps": "4", "idrx_int": "5"},
                               "nas-eps": {"gprs_timer_2_T3324_value": {}}})"));
    EXPECT_TRUE(TESTING::names_in(".").empty());
    EXPECT_EQ(context_.texts.idrx_reps, "4");
    EXPECT_EQ(context_.texts.idrx_int, "5");
}

TEST_F(result_mapping, refuses_a_timer_that_is_no_object) {
    EXPECT_THAT([this] { carry(R"({"nas-eps": {"gprs_timer_2_T3324_value": "00000101"}})"); },
                ThrowsMessage<json::type_error>("[json.exception.type_error.305] cannot use "
                                                "operator[] with a string argument with string"));
}

TEST_F(result_mapping, writes_again_after_every_accepted_packet) {
    carry(R"({"lte-rrc": {"idrx_reps": "4", "idrx_int": "5"}})");
    fs::remove("profile.json");
    map_packet(context_, packet_with("lte_rrc", "{}"), result_);
    EXPECT_EQ(profile()["idrx_int"], "5");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PROFILE
