#include "parser/lte_rrc_mappings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parser/lte_rrc_parser.h"
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

using rows = std::vector<std::pair<std::string, std::string>>;

rows rows_of(mapping_table table) {
    rows all;
    for (const auto& entry : table) {
        all.emplace_back(entry.index, entry.value);
    }
    return all;
}

TEST(mapping_tables, paging_cycle_in_seconds) {
    EXPECT_EQ(rows_of(paging_cycle_table),
              (rows{{"0", "0.32"}, {"1", "0.64"}, {"2", "1.28"}, {"3", "2.56"}}));
}

TEST(mapping_tables, paging_repetitions) {
    EXPECT_EQ(rows_of(paging_repetition_table), (rows{{"0", "1"},
                                                      {"1", "2"},
                                                      {"2", "4"},
                                                      {"3", "8"},
                                                      {"4", "16"},
                                                      {"5", "32"},
                                                      {"6", "64"},
                                                      {"7", "128"},
                                                      {"8", "256"}}));
}

TEST(mapping_tables, drx_timers_in_subframes) {
    EXPECT_EQ(rows_of(drx_timer_table),
              (rows{{"0", "1"},     {"1", "2"},    {"2", "3"},    {"3", "4"},    {"4", "5"},
                    {"5", "6"},     {"6", "8"},    {"7", "10"},   {"8", "20"},   {"9", "30"},
                    {"10", "40"},   {"11", "50"},  {"12", "60"},  {"13", "80"},  {"14", "100"},
                    {"15", "200"},  {"16", "300"}, {"17", "500"}, {"18", "750"}, {"19", "1280"},
                    {"20", "1920"}, {"21", "2560"}}));
}

TEST(mapping_tables, long_drx_cycle_in_seconds) {
    EXPECT_EQ(rows_of(long_drx_cycle_table), (rows{{"0", "0.01"},
                                                   {"1", "0.02"},
                                                   {"2", "0.032"},
                                                   {"3", "0.040"},
                                                   {"4", "0.064"},
                                                   {"5", "0.080"},
                                                   {"6", "0.128"},
                                                   {"7", "0.160"},
                                                   {"8", "0.256"},
                                                   {"9", "0.320"},
                                                   {"10", "0.512"},
                                                   {"11", "0.640"},
                                                   {"12", "1.024"},
                                                   {"13", "1.280"},
                                                   {"14", "2.048"},
                                                   {"15", "2.560"}}));
}

TEST(mapping_tables, on_duration_is_the_beginning_of_the_drx_timers) {
    EXPECT_EQ(rows_of(on_duration_table), rows_of(mapping_table(drx_timer_table).first(16)));
}

class lte_rrc_mappings : public testing::Test {
  protected:
    void map_drx_field(std::string_view dissection) {
        map_field(parser_, packet_with("lte_rrc", dissection), result_, "lte-rrc.onDurationTimer",
                  drx_timer_table, "cdrx_on_duration");
    }
    void map_cycle(std::string_view dissection) {
        map_paging_cycle(parser_, packet_with("lte_rrc", dissection), result_);
    }
    void map_repetitions(std::string_view dissection) {
        map_paging_repetitions(parser_, packet_with("lte_rrc", dissection), result_);
    }

    json result_;
    log_recorder log_;
    lte_rrc_parser parser_{&log_, &log_recorder::callback};
};

TEST_F(lte_rrc_mappings, map_field_translates_and_creates_the_result_object) {
    map_drx_field(R"({"lte-rrc.onDurationTimer": "7"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"cdrx_on_duration": "10"}})"));
    EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(lte_rrc_mappings, map_field_replaces_an_earlier_value_and_keeps_the_other_members) {
    result_ = json::parse(R"({"lte-rrc": {"cdrx_on_duration": "1", "cdrx_int": "2"}})");
    map_drx_field(R"({"a": {"lte-rrc.onDurationTimer": "21"}})");
    EXPECT_EQ(result_,
              json::parse(R"({"lte-rrc": {"cdrx_on_duration": "2560", "cdrx_int": "2"}})"));
}

TEST_F(lte_rrc_mappings, map_field_leaves_the_result_alone_without_the_field) {
    map_drx_field(R"({"lte-rrc.onDurationTimer_r13": "7"})");
    EXPECT_EQ(result_, json());
    EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(lte_rrc_mappings, map_field_logs_an_unknown_value_and_keeps_the_earlier_one) {
    map_drx_field(R"({"lte-rrc.onDurationTimer": "7"})");
    map_drx_field(R"({"lte-rrc.onDurationTimer": "22"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"cdrx_on_duration": "10"}})"));
    EXPECT_THAT(log_.messages(), ElementsAre("22 mapping not found"));
}

TEST_F(lte_rrc_mappings, log_calls_carry_the_parser_and_level_3) {
    map_drx_field(R"({"lte-rrc.onDurationTimer": "22"})");
    ASSERT_EQ(log_.entries.size(), 1U);
    EXPECT_EQ(log_.entries.front().caller, &parser_);
    EXPECT_EQ(log_.entries.front().level, 3U);
}

TEST_F(lte_rrc_mappings, a_null_log_callback_is_not_called) {
    const lte_rrc_parser silent(nullptr, nullptr);
    map_paging_cycle(silent, packet_with("lte_rrc", R"({"lte-rrc.defaultPagingCycle": "4"})"),
                     result_);
    EXPECT_EQ(result_, json());
}

TEST_F(lte_rrc_mappings, keys_match_as_a_whole) {
    for (const char* value : {" 3", "03", "3 ", "", "+3"}) {
        map_cycle(json{{"lte-rrc.defaultPagingCycle", value}}.dump());
    }
    EXPECT_EQ(result_, json());
    EXPECT_EQ(log_.entries.size(), 5U);
}

TEST_F(lte_rrc_mappings, map_field_refuses_a_value_that_is_no_text) {
    EXPECT_THAT([this] { map_drx_field(R"({"lte-rrc.onDurationTimer": 7})"); },
                ThrowsMessage<json::type_error>(HasSubstr(
                    "[json.exception.type_error.302] type must be string, but is number")));
    EXPECT_EQ(result_, json());
}

TEST_F(lte_rrc_mappings, map_field_refuses_a_result_member_that_is_no_object) {
    result_ = json::parse(R"({"lte-rrc": ["array"]})");
    EXPECT_THAT([this] { map_drx_field(R"({"lte-rrc.onDurationTimer": "7"})"); },
                ThrowsMessage<json::type_error>(HasSubstr(
                    "[json.exception.type_error.305] cannot use operator[] with a string argument "
                    "with array")));
}

TEST_F(lte_rrc_mappings, a_null_result_member_becomes_an_object) {
    result_ = json::parse(R"({"lte-rrc": null})");
    map_drx_field(R"({"lte-rrc.onDurationTimer": "7"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"cdrx_on_duration": "10"}})"));
}

TEST_F(lte_rrc_mappings, paging_cycle_is_found_by_the_beginning_of_its_name) {
    map_cycle(R"({"lte-rrc.defaultPagingCycle_r13": "3"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_int": "2.56"}})"));
}

TEST_F(lte_rrc_mappings, an_unknown_paging_cycle_is_logged_by_name) {
    map_cycle(R"({"lte-rrc.defaultPagingCycle": "4"})");
    EXPECT_EQ(result_, json());
    EXPECT_THAT(log_.messages(), ElementsAre("4 defaultPagingCycle mapping not found"));
    EXPECT_EQ(log_.entries.front().level, 3U);
}

TEST_F(lte_rrc_mappings, a_paging_cycle_that_is_no_text_is_refused) {
    EXPECT_THAT([this] { map_cycle(R"({"lte-rrc.defaultPagingCycle": null})"); },
                ThrowsMessage<json::type_error>(HasSubstr("type must be string, but is null")));
}

TEST_F(lte_rrc_mappings, repetitions_come_from_the_ltem_field) {
    map_repetitions(R"({"lte-rrc.mpdcch_NumRepetition_Paging_r13": "5"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_reps": "32"}})"));
}

TEST_F(lte_rrc_mappings, repetitions_come_from_the_nbiot_field_where_there_is_no_other) {
    map_repetitions(R"({"lte-rrc.npdcch_NumRepetitionPaging_r13": "8"})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_reps": "256"}})"));
}

TEST_F(lte_rrc_mappings, the_ltem_field_goes_before_the_nbiot_one_wherever_they_stand) {
    map_repetitions(R"({"a": {"lte-rrc.npdcch_NumRepetitionPaging_r13": "1"},
                        "b": {"lte-rrc.mpdcch_NumRepetition_Paging_r13": "2"}})");
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_reps": "4"}})"));
}

TEST_F(lte_rrc_mappings, an_unknown_ltem_value_is_not_replaced_by_the_nbiot_field) {
    map_repetitions(R"({"lte-rrc.npdcch_NumRepetitionPaging_r13": "1",
                        "lte-rrc.mpdcch_NumRepetition_Paging_r13": "9"})");
    EXPECT_EQ(result_, json());
    EXPECT_THAT(log_.messages(),
                ElementsAre("9 mpdcch_NumRepetition_Paging_r13 mapping not found"));
}

TEST_F(lte_rrc_mappings, unknown_nbiot_repetitions_are_logged_under_the_ltem_name) {
    map_repetitions(R"({"lte-rrc.npdcch_NumRepetitionPaging_r13": "3"})");
    for (const char* index : {"9", "10", "11"}) {
        map_repetitions(json{{"lte-rrc.npdcch_NumRepetitionPaging_r13", index}}.dump());
    }
    EXPECT_EQ(result_, json::parse(R"({"lte-rrc": {"idrx_reps": "8"}})"));
    EXPECT_THAT(log_.messages(),
                ElementsAre("9 mpdcch_NumRepetition_Paging_r13 mapping not found",
                            "10 mpdcch_NumRepetition_Paging_r13 mapping not found",
                            "11 mpdcch_NumRepetition_Paging_r13 mapping not found"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
