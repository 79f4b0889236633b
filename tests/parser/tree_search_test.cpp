#include "parser/tree_search.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;

/// The value found, or "none".
json value_of(const json* found) {
    return found != nullptr ? *found : json("none");
}

json search(const char* tree, std::string_view name) {
    const json parsed = json::parse(tree);
    return value_of(find_in_tree(parsed, name));
}

json search_by_prefix(const char* tree, std::string_view prefix) {
    const json parsed = json::parse(tree);
    return value_of(find_in_tree_by_prefix(parsed, prefix));
}

TEST(tree_search, finds_a_direct_member) {
    EXPECT_EQ(search(R"({"x": "1"})", "x"), "1");
}

TEST(tree_search, gives_the_value_within_the_tree) {
    const json tree = json::parse(R"({"a": {"x": {"y": "1"}}, "x": "2"})");
    EXPECT_EQ(find_in_tree(tree, "x"), &tree["a"]["x"]);
    EXPECT_EQ(find_in_tree_by_prefix(tree, "x"), &tree["a"]["x"]);
    EXPECT_EQ(find_in_tree(tree, "z"), nullptr);
}

TEST(tree_search, finds_nothing_where_no_member_has_the_name) {
    EXPECT_EQ(search(R"({"a": {"b": "1"}, "xx": "2"})", "x"), "none");
}

TEST(tree_search, visits_members_in_the_order_of_their_names) {
    EXPECT_EQ(search(R"({"c": {"x": "under c"}, "b": {"x": "under b"}})", "x"), "under b");
}

TEST(tree_search, goes_deep_into_a_member_before_it_looks_at_the_next) {
    EXPECT_EQ(search(R"({"b": {"m": {"n": {"x": "deep"}}}, "x": "shallow"})", "x"), "deep");
}

TEST(tree_search, tests_a_members_own_name_before_it_enters_its_value) {
    EXPECT_EQ(search(R"({"x": {"x": "inner"}})", "x"), json::parse(R"({"x": "inner"})"));
}

TEST(tree_search, does_not_enter_an_array_that_is_a_members_value) {
    EXPECT_EQ(search(R"({"a": [{"x": "1"}]})", "x"), "none");
    EXPECT_EQ(search_by_prefix(R"({"a": [{"x": "1"}]})", "x"), "none");
}

TEST(tree_search, does_not_enter_an_array_inside_an_array) {
    EXPECT_EQ(search(R"([[{"x": "1"}]])", "x"), "none");
}

TEST(tree_search, visits_the_elements_of_an_array_that_is_the_tree) {
    EXPECT_EQ(search(R"(["no", {"x": "1"}, {"x": "2"}])", "x"), "1");
}

TEST(tree_search, takes_an_array_element_as_a_member_named_by_its_index) {
    constexpr auto tree = R"(["a","b","c","d","e","f","g","h","i","j","k"])";
    EXPECT_EQ(search(tree, "2"), "c");
    EXPECT_EQ(search(tree, "10"), "k");
    EXPECT_EQ(search_by_prefix(tree, "1"), "b");
}

TEST(tree_search, finds_nothing_in_an_empty_object_or_array) {
    EXPECT_EQ(search("{}", ""), "none");
    EXPECT_EQ(search("[]", ""), "none");
    EXPECT_EQ(search_by_prefix("{}", ""), "none");
}

TEST(tree_search, finds_nothing_in_a_scalar) {
    for (const char* scalar : {R"("x")", "1", "true", "null"}) {
        EXPECT_EQ(search(scalar, ""), "none") << scalar;
        EXPECT_EQ(search_by_prefix(scalar, ""), "none") << scalar;
    }
}

TEST(tree_search, finds_values_of_every_type) {
    constexpr auto tree = R"({"n": null, "o": {"p": [1]}, "u": 7})";
    EXPECT_EQ(search(tree, "n"), json(nullptr));
    EXPECT_EQ(search(tree, "p"), json::parse("[1]"));
    EXPECT_EQ(search(tree, "u"), json(7));
}

TEST(tree_search, compares_names_by_case) {
    EXPECT_EQ(search(R"({"X": "1"})", "x"), "none");
}

TEST(tree_search_by_prefix, matches_a_longer_name_and_the_prefix_itself) {
    EXPECT_EQ(search_by_prefix(R"({"ab": "1"})", "a"), "1");
    EXPECT_EQ(search_by_prefix(R"({"a": "1"})", "a"), "1");
    EXPECT_EQ(search_by_prefix(R"({"ba": "1"})", "a"), "none");
}

TEST(tree_search_by_prefix, takes_the_first_of_several_names_in_order) {
    EXPECT_EQ(search_by_prefix(R"({"ac": "2", "ab": "1"})", "a"), "1");
}

TEST(tree_search_by_prefix, wants_the_prefix_to_the_letter) {
    constexpr auto prefix = "lte-rrc.rrcConnectionSetup_";
    EXPECT_EQ(search_by_prefix(R"({"lte-rrc.rrcConnectionSetup_element": "setup"})", prefix),
              "setup");
    EXPECT_EQ(search_by_prefix(R"({"lte-rrc.rrcConnectionSetupComplete_element": "no"})", prefix),
              "none");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
