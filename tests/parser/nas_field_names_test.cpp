#include "parser/nas_field_names.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;

/// The member's value, or "none".
json member_of(const char* tree, std::string_view field) {
    const json parsed = json::parse(tree);
    const json* member = nas_member(parsed, field);
    return member != nullptr ? *member : json("none");
}

TEST(nas_field_names, searches_a_tree_for_the_older_name) {
    const json tree = json::parse(R"({"a": {"nas_eps.emm.x": "1"}})");
    EXPECT_EQ(find_nas_field(tree, "nas_eps.emm.x"), json("1"));
}

TEST(nas_field_names, searches_a_tree_that_lacks_the_older_name_for_the_newer_one) {
    const json tree = json::parse(R"({"a": {"nas-eps.emm.x": "1"}})");
    EXPECT_EQ(find_nas_field(tree, "nas_eps.emm.x"), json("1"));
}

TEST(nas_field_names, prefers_the_older_name_wherever_in_the_tree_it_stands) {
    const json tree = json::parse(R"({"a": {"nas-eps.x": "newer"}, "b": {"nas_eps.x": "older"}})");
    EXPECT_EQ(find_nas_field(tree, "nas_eps.x"), json("older"));
}

TEST(nas_field_names, finds_nothing_in_a_tree_without_either) {
    EXPECT_EQ(find_nas_field(json::parse(R"({"nas.eps.x": 1, "eps.x": 2, "x": 3})"), "nas_eps.x"),
              std::nullopt);
}

TEST(nas_field_names, changes_the_protocols_name_only) {
    const json tree = json::parse(R"({"nas-eps.nas-msg-emm-type": "1"})");
    EXPECT_EQ(find_nas_field(tree, "nas_eps.nas_msg_emm_type"), std::nullopt);
    EXPECT_EQ(find_nas_field(json::parse(R"({"nas-eps.nas_eps.x": "1"})"), "nas_eps.nas_eps.x"),
              json("1"));
}

TEST(nas_field_names, leaves_names_of_other_protocols_alone) {
    const json tree = json::parse(R"({"nas-eps.apn": "1"})");
    EXPECT_EQ(find_nas_field(tree, "gsm_a.x.apn"), std::nullopt);
    EXPECT_EQ(nas_member(tree, "gsm_a.x.apn"), nullptr);
}

TEST(nas_field_names, takes_a_direct_member_of_either_name) {
    EXPECT_EQ(member_of(R"({"nas_eps.x": "1"})", "nas_eps.x"), "1");
    EXPECT_EQ(member_of(R"({"nas-eps.x": "1"})", "nas_eps.x"), "1");
    EXPECT_EQ(member_of(R"({"nas-eps.x": "newer", "nas_eps.x": "older"})", "nas_eps.x"), "older");
}

TEST(nas_field_names, takes_a_direct_member_of_any_type) {
    EXPECT_EQ(member_of(R"({"nas_eps.x": null, "nas-eps.x": "newer"})", "nas_eps.x"), json());
    EXPECT_EQ(member_of(R"({"nas-eps.x": {"y": 1}})", "nas_eps.x"), (json{{"y", 1}}));
}

TEST(nas_field_names, takes_no_member_from_deeper_down) {
    EXPECT_EQ(member_of(R"({"a": {"nas_eps.x": "1", "nas-eps.x": "1"}})", "nas_eps.x"), "none");
}

TEST(nas_field_names, takes_no_member_from_what_is_no_object) {
    for (const char* tree : {"null", "[]", R"(["nas_eps.x"])", R"("nas_eps.x")", "1"}) {
        EXPECT_EQ(member_of(tree, "nas_eps.x"), "none") << tree;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
