#include "parser/tree_search.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;

TEST(tree_search, finds_a_direct_member) {
    EXPECT_EQ(find_in_tree(json::parse(R"({"x": "1"})"), "x"), json("1"));
}

TEST(tree_search, finds_nothing_where_no_member_has_the_name) {
    EXPECT_EQ(find_in_tree(json::parse(R"({"a": {"b": "1"}, "xx": "2"})"), "x"), std::nullopt);
}

TEST(tree_search, visits_members_in_the_order_of_their_names) {
    const json tree = json::parse(R"({"c": {"x": "under c"}, "b": {"x": "under b"}})");
    EXPECT_EQ(find_in_tree(tree, "x"), json("under b"));
}

TEST(tree_search, goes_deep_into_a_member_before_it_looks_at_the_next) {
    const json tree = json::parse(R"({"b": {"m": {"n": {"x": "deep"}}}, "x": "shallow"})");
    EXPECT_EQ(find_in_tree(tree, "x"), json("deep"));
}

TEST(tree_search, tests_a_members_own_name_before_it_enters_its_value) {
    const json tree = json::parse(R"({"x": {"x": "inner"}})");
    EXPECT_EQ(find_in_tree(tree, "x"), json::parse(R"({"x": "inner"})"));
}

TEST(tree_search, does_not_enter_an_array_that_is_a_members_value) {
    EXPECT_EQ(find_in_tree(json::parse(R"({"a": [{"x": "1"}]})"), "x"), std::nullopt);
    EXPECT_EQ(find_in_tree_by_prefix(json::parse(R"({"a": [{"x": "1"}]})"), "x"), std::nullopt);
}

TEST(tree_search, does_not_enter_an_array_inside_an_array) {
    EXPECT_EQ(find_in_tree(json::parse(R"([[{"x": "1"}]])"), "x"), std::nullopt);
}

TEST(tree_search, visits_the_elements_of_an_array_that_is_the_tree) {
    EXPECT_EQ(find_in_tree(json::parse(R"(["no", {"x": "1"}, {"x": "2"}])"), "x"), json("1"));
}

TEST(tree_search, takes_an_array_element_as_a_member_named_by_its_index) {
    const json tree = json::parse(R"(["a","b","c","d","e","f","g","h","i","j","k"])");
    EXPECT_EQ(find_in_tree(tree, "2"), json("c"));
    EXPECT_EQ(find_in_tree(tree, "10"), json("k"));
    EXPECT_EQ(find_in_tree_by_prefix(tree, "1"), json("b"));
}

TEST(tree_search, finds_nothing_in_an_empty_object_or_array) {
    EXPECT_EQ(find_in_tree(json::object(), ""), std::nullopt);
    EXPECT_EQ(find_in_tree(json::array(), ""), std::nullopt);
    EXPECT_EQ(find_in_tree_by_prefix(json::object(), ""), std::nullopt);
}

TEST(tree_search, finds_nothing_in_a_scalar) {
    for (const json& scalar : {json("x"), json(1), json(true), json(nullptr)}) {
        EXPECT_EQ(find_in_tree(scalar, ""), std::nullopt) << scalar;
        EXPECT_EQ(find_in_tree_by_prefix(scalar, ""), std::nullopt) << scalar;
    }
}

TEST(tree_search, returns_values_of_every_type_as_they_stand) {
    const json tree = json::parse(R"({"n": null, "o": {"p": [1]}, "u": 7})");
    EXPECT_EQ(find_in_tree(tree, "n"), json(nullptr));
    EXPECT_EQ(find_in_tree(tree, "p"), json::parse("[1]"));
    EXPECT_EQ(find_in_tree(tree, "u"), json(7));
}

TEST(tree_search, compares_names_by_case) {
    EXPECT_EQ(find_in_tree(json::parse(R"({"X": "1"})"), "x"), std::nullopt);
}

TEST(tree_search_by_prefix, matches_a_longer_name_and_the_prefix_itself) {
    EXPECT_EQ(find_in_tree_by_prefix(json::parse(R"({"ab": "1"})"), "a"), json("1"));
    EXPECT_EQ(find_in_tree_by_prefix(json::parse(R"({"a": "1"})"), "a"), json("1"));
    EXPECT_EQ(find_in_tree_by_prefix(json::parse(R"({"ba": "1"})"), "a"), std::nullopt);
}

TEST(tree_search_by_prefix, takes_the_first_of_several_names_in_order) {
    EXPECT_EQ(find_in_tree_by_prefix(json::parse(R"({"ac": "2", "ab": "1"})"), "a"), json("1"));
}

TEST(tree_search_by_prefix, wants_the_prefix_to_the_letter) {
    constexpr auto prefix = "lte-rrc.rrcConnectionSetup_";
    EXPECT_EQ(find_in_tree_by_prefix(
                  json::parse(R"({"lte-rrc.rrcConnectionSetup_element": "setup"})"), prefix),
              json("setup"));
    EXPECT_EQ(find_in_tree_by_prefix(
                  json::parse(R"({"lte-rrc.rrcConnectionSetupComplete_element": "no"})"), prefix),
              std::nullopt);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
