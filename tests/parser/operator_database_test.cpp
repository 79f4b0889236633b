#include "parser/operator_database.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "data/embedded_operators.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::StartsWith;
using testing::ThrowsMessage;

const operator_list& shipped_operators() {
    static const operator_list operators = load_operators(DATA::embedded_operators());
    return operators;
}

std::map<std::string, int> count_of_texts(const char* member) {
    std::map<std::string, int> counts;
    for (const auto& entry : shipped_operators()) {
        ++counts[entry.at(member).get<std::string>()];
    }
    return counts;
}

std::ptrdiff_t count_of_nulls(const char* member) {
    return std::ranges::count_if(
        shipped_operators(), [member](const json& entry) { return entry.at(member).is_null(); });
}

bool is_number_of(std::string_view text, std::size_t digits) {
    return text.size() == digits && std::ranges::all_of(text, [](char character) {
               return character >= '0' && character <= '9';
           });
}

json entry_named(const char* country, const char* mcc, const char* mnc) {
    const auto found = std::ranges::find_if(shipped_operators(), [&](const json& entry) {
        return entry.at("countryName") == country && entry.at("mcc") == mcc &&
               entry.at("mnc") == mnc;
    });
    return found != shipped_operators().end() ? *found : json();
}

/// Country and operator of the entry found, or null.
json names_of(const operator_list& operators, int mcc, int mnc) {
    const json* found = find_operator(operators, mcc, mnc);
    return found != nullptr ? json{found->at("countryName"), found->at("operator")} : json();
}

TEST(shipped_operator_list, is_the_file_in_the_tree_with_a_zero_byte_behind) {
    const std::string_view embedded = DATA::embedded_operators();
    EXPECT_EQ(embedded.size(), 881'584);
    EXPECT_EQ(embedded, TESTING::read_file(TESTING::data_file("../../data/operators.json")));
    EXPECT_EQ(std::string_view(embedded.data(), embedded.size() + 1).back(), '\0');
}

TEST(shipped_operator_list, has_national_then_test_then_international_operators) {
    const operator_list& operators = shipped_operators();
    ASSERT_EQ(operators.size(), 3034);
    for (std::size_t place = 0; place < operators.size(); ++place) {
        EXPECT_EQ(operators[place].at("type"), place < 2932   ? "National"
                                               : place < 2936 ? "Test"
                                                              : "International")
            << place;
    }
}

TEST(shipped_operator_list, has_ten_members_in_each_entry) {
    for (const auto& entry : shipped_operators()) {
        EXPECT_EQ(entry.size(), 10) << entry;
        for (const char* member : {"type", "mcc", "mnc", "status"}) {
            EXPECT_TRUE(entry.at(member).is_string()) << entry;
        }
        for (const char* member :
             {"countryName", "countryCode", "brand", "operator", "bands", "notes"}) {
            EXPECT_TRUE(entry.at(member).is_string() || entry.at(member).is_null()) << entry;
        }
    }
}

TEST(shipped_operator_list, lacks_some_names) {
    EXPECT_EQ(count_of_nulls("countryName"), 102);
    EXPECT_EQ(count_of_nulls("countryCode"), 102);
    EXPECT_EQ(count_of_nulls("brand"), 1009);
    EXPECT_EQ(count_of_nulls("operator"), 31);
    EXPECT_EQ(count_of_nulls("bands"), 24);
    EXPECT_EQ(count_of_nulls("notes"), 1358);
    for (const auto& entry : shipped_operators()) {
        EXPECT_EQ(entry.at("countryName").is_null(), entry.at("type") != "National") << entry;
    }
}

TEST(shipped_operator_list, has_operators_of_every_status) {
    EXPECT_EQ(count_of_texts("status"), (std::map<std::string, int>{{"Operational", 1647},
                                                                    {"Unknown", 780},
                                                                    {"Not operational", 575},
                                                                    {"Reserved", 14},
                                                                    {"Returned spare", 8},
                                                                    {"Testing", 2},
                                                                    {"Allocated", 2},
                                                                    {"Planned", 1},
                                                                    {"Temporary operational", 1},
                                                                    {"Test Network", 1},
                                                                    {"Upcoming", 1},
                                                                    {"Implement / Design", 1},
                                                                    {"Ongoing", 1}}));
}

TEST(shipped_operator_list, has_three_irregular_codes) {
    std::ptrdiff_t two_digits = 0;
    std::ptrdiff_t three_digits = 0;
    std::vector<std::pair<std::size_t, std::string>> irregular;
    for (std::size_t place = 0; place < shipped_operators().size(); ++place) {
        const json& entry = shipped_operators()[place];
        EXPECT_TRUE(is_number_of(entry.at("mcc").get<std::string>(), 3)) << entry;
        const auto mnc = entry.at("mnc").get<std::string>();
        two_digits += is_number_of(mnc, 2) ? 1 : 0;
        three_digits += is_number_of(mnc, 3) ? 1 : 0;
        if (!is_number_of(mnc, 2) && !is_number_of(mnc, 3)) {
            irregular.emplace_back(place, mnc);
        }
    }
    EXPECT_EQ(two_digits, 2206);
    EXPECT_EQ(three_digits, 825);
    EXPECT_THAT(irregular, ElementsAre(std::pair(1661, "100 - 190"), std::pair(2888, "?"),
                                       std::pair(2889, "?")));
}

TEST(shipped_operator_list, has_the_operators_that_show_its_form) {
    const json abkhazia = entry_named("Abkhazia", "289", "67");
    EXPECT_EQ(abkhazia.at("countryCode"), "GE-AB");
    EXPECT_EQ(abkhazia.at("brand"), "Aquafon");
    EXPECT_EQ(abkhazia.at("operator"), "Aquafon JSC");
    const json airdata = entry_named("Germany", "262", "15");
    EXPECT_EQ(airdata.at("brand"), "Airdata");
    EXPECT_EQ(airdata.at("operator"), json());
    EXPECT_EQ(shipped_operators()[2887].at("operator"),
              "Telefónica Móviles Guatemala (Telefónica)");
    EXPECT_EQ(shipped_operators()[2888].at("brand"), "digicel");
    EXPECT_EQ(shipped_operators()[2889].at("brand"), "RED/INTELFON");
    EXPECT_EQ(shipped_operators()[2932].at("operator"), "Test network");
    EXPECT_EQ(shipped_operators()[2936].at("operator"), "ICO Satellite Management");
}

TEST(shipped_operator_list, repeats_41_codes) {
    std::map<std::pair<std::string, int>, int> counts;
    for (const auto& entry : shipped_operators()) {
        const auto mnc = entry.at("mnc").get<std::string>();
        if (is_number_of(mnc, 2) || is_number_of(mnc, 3)) {
            ++counts[{entry.at("mcc").get<std::string>(), std::stoi(mnc)}];
        }
    }
    EXPECT_EQ(std::ranges::count_if(counts, [](const auto& count) { return count.second > 1; }),
              41);
}

TEST(operator_lookup, finds_an_operator_of_the_shipped_list) {
    EXPECT_EQ(names_of(shipped_operators(), 289, 67), (json{"Abkhazia", "Aquafon JSC"}));
    EXPECT_EQ(names_of(shipped_operators(), 262, 2), (json{"Germany", "Vodafone D2 GmbH"}));
}

TEST(operator_lookup, takes_the_first_of_operators_with_the_same_codes) {
    EXPECT_EQ(names_of(shipped_operators(), 234, 3),
              (json{"Guernsey (United Kingdom)", "Guernsey Airtel Ltd"}));
}

TEST(operator_lookup, takes_a_range_of_codes_for_its_first) {
    EXPECT_EQ(names_of(shipped_operators(), 314, 100),
              (json{"United States of America", "Reserved for Public Safety"}));
    EXPECT_THROW(find_operator(shipped_operators(), 314, 150), std::invalid_argument);
}

TEST(operator_lookup, fails_at_the_first_unknown_code_of_the_shipped_list) {
    for (const auto& codes :
         {std::pair(1, 1), std::pair(999, 99), std::pair(901, 1), std::pair(738, 0),
          std::pair(704, 4), std::pair(262, 999), std::pair(0, 0)}) {
        EXPECT_THAT([&codes] { find_operator(shipped_operators(), codes.first, codes.second); },
                    ThrowsMessage<std::invalid_argument>("invalid stoi argument"))
            << codes.first << '/' << codes.second;
    }
    EXPECT_EQ(find_operator(shipped_operators(), 704, 3), &shipped_operators()[2887]);
}

TEST(operator_lookup, compares_codes_as_numbers) {
    const operator_list operators = load_operators(R"([
        {"mcc": "262", "mnc": "001", "countryName": "A", "operator": "a"},
        {"mcc": "0262", "mnc": "02", "countryName": "B", "operator": "b"},
        {"mcc": " +262", "mnc": "3", "countryName": "C", "operator": "c"}])");
    EXPECT_EQ(names_of(operators, 262, 1), (json{"A", "a"}));
    EXPECT_EQ(names_of(operators, 262, 2), (json{"B", "b"}));
    EXPECT_EQ(names_of(operators, 262, 3), (json{"C", "c"}));
}

TEST(operator_lookup, wants_both_codes_to_be_the_same) {
    const operator_list operators = load_operators(R"([{"mcc": "262", "mnc": "01"}])");
    EXPECT_NE(find_operator(operators, 262, 1), nullptr);
    EXPECT_EQ(find_operator(operators, 262, 2), nullptr);
    EXPECT_EQ(find_operator(operators, 263, 1), nullptr);
    EXPECT_EQ(find_operator(operators, 1, 262), nullptr);
}

TEST(operator_lookup, finds_nothing_in_an_empty_list) {
    EXPECT_EQ(find_operator(load_operators("[]"), 262, 1), nullptr);
}

TEST(operator_lookup, passes_over_entries_that_lack_a_code) {
    const operator_list operators = load_operators(R"([
        {"mcc": "?"}, {"mnc": "?"}, {}, [], "text", null, 1,
        {"mcc": "262", "mnc": "01", "countryName": "A", "operator": "a"}])");
    EXPECT_EQ(names_of(operators, 262, 1), (json{"A", "a"}));
}

TEST(operator_lookup, fails_at_a_code_that_is_too_great) {
    for (const char* list : {R"([{"mcc": "2147483648", "mnc": "1"}])",
                             R"([{"mcc": "1", "mnc": "99999999999999999999"}])"}) {
        EXPECT_THAT([list] { find_operator(load_operators(list), 262, 1); },
                    ThrowsMessage<std::out_of_range>("stoi argument out of range"))
            << list;
    }
}

TEST(operator_lookup, fails_at_a_code_that_is_no_text) {
    EXPECT_THAT([] { find_operator(load_operators(R"([{"mcc": 262, "mnc": "01"}])"), 262, 1); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is number"));
    EXPECT_THAT([] { find_operator(load_operators(R"([{"mcc": "262", "mnc": null}])"), 262, 1); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be string, but is null"));
}

TEST(operator_lookup, converts_the_mcc_then_the_mnc_and_then_compares) {
    EXPECT_THROW(find_operator(load_operators(R"([{"mcc": "?", "mnc": 1}])"), 262, 1),
                 std::invalid_argument);
    EXPECT_THROW(find_operator(load_operators(R"([{"mcc": "1", "mnc": "?"}])"), 262, 1),
                 std::invalid_argument);
}

TEST(operator_lookup, stops_at_the_match) {
    const operator_list operators =
        load_operators(R"([{"mcc": "262", "mnc": "1"}, {"mcc": "?", "mnc": "?"}])");
    EXPECT_EQ(find_operator(operators, 262, 1), &operators.front());
}

TEST(built_in_operator_list, is_the_shipped_one) {
    EXPECT_EQ(*built_in_operators(), shipped_operators());
}

TEST(built_in_operator_list, is_read_once_and_shared) {
    EXPECT_EQ(built_in_operators(), built_in_operators());
}

TEST(operator_loading, keeps_the_entries_as_they_stand_and_in_their_order) {
    EXPECT_THAT(load_operators(R"([{"b": 1}, {"a": null}, 3])"),
                ElementsAre(json{{"b", 1}}, json{{"a", nullptr}}, json(3)));
}

TEST(operator_loading, takes_zero_bytes_for_the_end_of_the_text) {
    EXPECT_THAT(load_operators(std::string_view("[1]\0\0\0", 6)), ElementsAre(json(1)));
}

TEST(operator_loading, refuses_a_text_that_is_no_array) {
    EXPECT_THAT([] { load_operators("{}"); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be array, but is object"));
    EXPECT_THAT([] { load_operators("null"); },
                ThrowsMessage<json::type_error>(
                    "[json.exception.type_error.302] type must be array, but is null"));
}

TEST(operator_loading, refuses_a_text_that_is_no_json) {
    for (const char* text : {"", "[", "[] []", "[/* comment */]", "[1,]"}) {
        EXPECT_THAT(
            [text] { load_operators(text); },
            ThrowsMessage<json::parse_error>(StartsWith("[json.exception.parse_error.101]")))
            << text;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
