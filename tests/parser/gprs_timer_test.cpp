#include "parser/gprs_timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using TESTING::packet_with;
using testing::ThrowsMessage;

constexpr const gprs_timer& t3324 = gprs_timers[0];
constexpr const gprs_timer& t3412_extended = gprs_timers[1];
constexpr const gprs_timer& t3412 = gprs_timers[2];
constexpr const gprs_timer& t3402 = gprs_timers[3];

json decode(const gprs_timer& timer, std::string_view dissection, json result = {}) {
    decode_gprs_timer(packet_with("nas-eps", dissection), result, timer);
    return result;
}

/// A T3324 element, given the JSON of its unit and of its value.
std::string t3324_element(const std::string& unit, const std::string& value) {
    return R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
               "gsm_a.gm.gmm.gprs_timer2_unit": )" +
           unit + R"(, "gsm_a.gm.gmm.gprs_timer2_value": )" + value + "}}}";
}

json decode_t3324(const std::string& unit, const std::string& value) {
    return decode(t3324, t3324_element('"' + unit + '"', '"' + value + '"'))
        .at("nas-eps")
        .at("gprs_timer_2_T3324_value");
}

json decode_t3412_extended(const std::string& unit, const std::string& value) {
    const json tree{{"gsm_a.gm.gmm.gprs_timer3_unit", unit},
                    {"gsm_a.gm.gmm.gprs_timer3_value", value}};
    const json layer{
        {"GPRS Timer 3 - T3412 extended value", {{"gsm_a.gm.gmm.gprs_timer3_tree", tree}}}};
    return decode(t3412_extended, layer.dump())
        .at("nas-eps")
        .at("gprs_timer_3_T3412_extended_value");
}

json timer_result(std::uint32_t value, const char* unit, const char* bitmask) {
    return {{"value", value}, {"unit", unit}, {"bitmask", bitmask}};
}

TEST(gprs_timer, scales_every_unit_of_a_gprs_timer) {
    EXPECT_EQ(decode_t3324("0", "5"), timer_result(10, "seconds", "00000101"));
    EXPECT_EQ(decode_t3324("1", "5"), timer_result(5, "minutes", "00100101"));
    EXPECT_EQ(decode_t3324("2", "3"), timer_result(18, "decihours", "01000011"));
    EXPECT_EQ(decode_t3324("7", "0"), timer_result(0, "deactivated", "11100000"));
}

TEST(gprs_timer, gives_only_the_bitmask_of_an_unknown_unit) {
    EXPECT_EQ(decode_t3324("3", "9"), (json{{"bitmask", "01101001"}}));
    EXPECT_EQ(decode_t3324("4", "9"), (json{{"bitmask", "10001001"}}));
    EXPECT_EQ(decode_t3324("5", "9"), (json{{"bitmask", "10101001"}}));
    EXPECT_EQ(decode_t3324("6", "9"), (json{{"bitmask", "11001001"}}));
}

TEST(gprs_timer, scales_every_unit_of_a_gprs_timer_3) {
    EXPECT_EQ(decode_t3412_extended("0", "31"), timer_result(310, "minutes", "00011111"));
    EXPECT_EQ(decode_t3412_extended("1", "7"), timer_result(7, "hour", "00100111"));
    EXPECT_EQ(decode_t3412_extended("2", "7"), timer_result(70, "hours", "01000111"));
    EXPECT_EQ(decode_t3412_extended("3", "7"), timer_result(14, "seconds", "01100111"));
    EXPECT_EQ(decode_t3412_extended("4", "7"), timer_result(210, "seconds", "10000111"));
    EXPECT_EQ(decode_t3412_extended("5", "7"), timer_result(7, "minute", "10100111"));
    EXPECT_EQ(decode_t3412_extended("6", "1"), timer_result(64, "hours", "11000001"));
    EXPECT_EQ(decode_t3412_extended("7", "0"), timer_result(0, "deactivated", "11100000"));
}

TEST(gprs_timer, scales_the_whole_value_though_the_bitmask_has_five_bits_of_it) {
    EXPECT_EQ(decode_t3324("1", "40"), timer_result(40, "minutes", "00101000"));
}

TEST(gprs_timer, takes_the_low_three_bits_of_the_unit) {
    EXPECT_EQ(decode_t3324("9", "5"), timer_result(5, "minutes", "00100101"));
}

TEST(gprs_timer, wraps_in_32_bits) {
    EXPECT_EQ(decode_t3324("2", "4294967295"), timer_result(4294967290, "decihours", "01011111"));
    EXPECT_EQ(decode_t3412_extended("6", "67108865"), timer_result(64, "hours", "11000001"));
}

TEST(gprs_timer, converts_a_negative_text_to_a_great_number) {
    EXPECT_EQ(decode_t3324("1", "-1"), timer_result(4294967295, "minutes", "00111111"));
    EXPECT_EQ(decode_t3324("-1", "1"), timer_result(1, "deactivated", "11100001"));
}

TEST(gprs_timer, stops_reading_at_the_first_character_that_is_no_digit) {
    EXPECT_EQ(decode_t3324(" 1 (minute)", "5.9"), timer_result(5, "minutes", "00100101"));
}

TEST(gprs_timer, gives_the_value_as_an_unsigned_integer) {
    EXPECT_TRUE(decode_t3324("1", "5").at("value").is_number_unsigned());
}

TEST(gprs_timer, tells_t3412_and_t3402_apart_by_their_elements) {
    constexpr std::string_view dissection = R"({
        "GPRS Timer - T3402 value": {"gsm_a.gm.gmm.gprs_timer_tree": {
            "gsm_a.gm.gmm.gprs_timer_unit": "1", "gsm_a.gm.gmm.gprs_timer_value": "12"}},
        "GPRS Timer - T3412 value": {"gsm_a.gm.gmm.gprs_timer_tree": {
            "gsm_a.gm.gmm.gprs_timer_unit": "2", "gsm_a.gm.gmm.gprs_timer_value": "9"}}})";
    EXPECT_EQ(decode(t3402, dissection, decode(t3412, dissection)), json::parse(R"({"nas-eps": {
                  "gprs_timer_T3412_value":
                      {"value": 54, "unit": "decihours", "bitmask": "01001001"},
                  "gprs_timer_T3402_extended_value":
                      {"value": 12, "unit": "minutes", "bitmask": "00101100"}}})"));
}

TEST(gprs_timer, finds_the_element_and_its_tree_at_any_depth) {
    EXPECT_EQ(decode(t3324, R"({"a": {"GPRS Timer 2 - T3324 value": {"b": {
                                "gsm_a.gm.gmm.gprs_timer2_tree": {
                                    "gsm_a.gm.gmm.gprs_timer2_unit": "1",
                                    "gsm_a.gm.gmm.gprs_timer2_value": "2"}}}}})"),
              json::parse(R"({"nas-eps": {"gprs_timer_2_T3324_value":
                  {"value": 2, "unit": "minutes", "bitmask": "00100010"}}})"));
}

TEST(gprs_timer, writes_nothing_where_a_part_of_the_element_is_missing) {
    for (const char* dissection : {
             R"({})",
             R"({"gsm_a.gm.gmm.gprs_timer2_tree": {"gsm_a.gm.gmm.gprs_timer2_unit": "1",
                                                   "gsm_a.gm.gmm.gprs_timer2_value": "2"}})",
             R"({"GPRS Timer 2 - T3324 value": "text"})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2": "34"}})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": "text"}})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree":
                 ["gsm_a.gm.gmm.gprs_timer2_unit", "gsm_a.gm.gmm.gprs_timer2_value"]}})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
                 "gsm_a.gm.gmm.gprs_timer2_unit": "1"}}})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
                 "gsm_a.gm.gmm.gprs_timer2_value": "2"}}})",
             R"({"GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {"deeper": {
                 "gsm_a.gm.gmm.gprs_timer2_unit": "1",
                 "gsm_a.gm.gmm.gprs_timer2_value": "2"}}}})",
         }) {
        EXPECT_EQ(decode(t3324, dissection), json()) << dissection;
    }
}

TEST(gprs_timer, replaces_the_members_of_an_earlier_timer_one_by_one) {
    const json earlier = json::parse(R"({"nas-eps": {"gprs_timer_2_T3324_value":
        {"value": 10, "unit": "seconds", "bitmask": "00000101", "other": 1}}})");
    EXPECT_EQ(decode(t3324, t3324_element(R"("1")", R"("2")"), earlier),
              json::parse(R"({"nas-eps": {"gprs_timer_2_T3324_value":
                  {"value": 2, "unit": "minutes", "bitmask": "00100010", "other": 1}}})"));
    EXPECT_EQ(decode(t3324, t3324_element(R"("3")", R"("2")"), earlier),
              json::parse(R"({"nas-eps": {"gprs_timer_2_T3324_value":
                  {"value": 10, "unit": "seconds", "bitmask": "01100010", "other": 1}}})"));
}

TEST(gprs_timer, refuses_a_unit_or_a_value_that_is_no_text) {
    EXPECT_THAT([] { decode(t3324, t3324_element("1", R"("2")")); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is number"));
    EXPECT_THAT([] { decode(t3324, t3324_element(R"("1")", "{}")); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is object"));
}

TEST(gprs_timer, refuses_a_unit_or_a_value_that_is_no_number) {
    EXPECT_THAT([] { decode_t3324("minutes", "2"); },
                ThrowsMessage<std::invalid_argument>("invalid stoul argument"));
    EXPECT_THAT([] { decode_t3324("1", ""); },
                ThrowsMessage<std::invalid_argument>("invalid stoul argument"));
}

TEST(gprs_timer, refuses_a_unit_or_a_value_of_more_than_32_bits) {
    EXPECT_THAT([] { decode_t3324("4294967296", "2"); },
                ThrowsMessage<std::out_of_range>("stoul argument out of range"));
    EXPECT_THAT([] { decode_t3324("1", "4294967296"); },
                ThrowsMessage<std::out_of_range>("stoul argument out of range"));
}

TEST(gprs_timer, converts_the_unit_before_it_reads_the_value) {
    EXPECT_THAT([] { decode(t3324, t3324_element(R"("x")", "{}")); },
                ThrowsMessage<std::invalid_argument>("invalid stoul argument"));
}

TEST(gprs_timer, writes_nothing_before_it_refuses) {
    json result;
    EXPECT_THROW(
        decode_gprs_timer(packet_with("nas-eps", t3324_element(R"("1")", R"("x")")), result, t3324),
        std::invalid_argument);
    EXPECT_EQ(result, json());
}

TEST(gprs_timer, refuses_a_result_that_holds_no_object_to_write_into) {
    for (const char* result :
         {R"({"nas-eps": "text"})", R"({"nas-eps": {"gprs_timer_2_T3324_value": "text"}})"}) {
        EXPECT_THAT(
            [result] { decode(t3324, t3324_element(R"("1")", R"("2")"), json::parse(result)); },
            ThrowsMessage<json::type_error>(
                HasSubstr("cannot use operator[] with a string argument with string")))
            << result;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
