#include "parser/nas_field_names.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;

/// The value found, or "none".
json value_of(const json* found) {
    return found != nullptr ? *found : json("none");
}

json search(const char* tree, std::string_view field) {
    const json parsed = json::parse(tree);
    return value_of(find_nas_field(parsed, field));
}

json member_of(const char* tree, std::string_view field) {
    const json parsed = json::parse(tree);
    return value_of(nas_member(parsed, field));
}

TEST(nas_field_names, searches_a_tree_for_the_older_name) {
    EXPECT_EQ(search(R"({"a": {"nas_eps.emm.x": "1"}})", "nas_eps.emm.x"), "1");
}

TEST(nas_field_names, searches_a_tree_that_lacks_the_older_name_for_the_newer_one) {
    EXPECT_EQ(search(R"({"a": {"nas-eps.emm.x": "1"}})", "nas_eps.emm.x"), "1");
}

TEST(nas_field_names, prefers_the_older_name_wherever_in_the_tree_it_stands) {
    EXPECT_EQ(search(R"({"a": {"nas-eps.x": "newer"}, "b": {"nas_eps.x": "older"}})", "nas_eps.x"),
              "older");
}

TEST(nas_field_names, finds_nothing_in_a_tree_without_either) {
    EXPECT_EQ(search(R"({"nas.eps.x": 1, "eps.x": 2, "x": 3})", "nas_eps.x"), "none");
}

TEST(nas_field_names, changes_the_protocols_name_only) {
    EXPECT_EQ(search(R"({"nas-eps.nas-msg-emm-type": "1"})", "nas_eps.nas_msg_emm_type"), "none");
    EXPECT_EQ(search(R"({"nas-eps.nas_eps.x": "1"})", "nas_eps.nas_eps.x"), "1");
}

TEST(nas_field_names, leaves_names_of_other_protocols_alone) {
    EXPECT_EQ(search(R"({"nas-eps.apn": "1"})", "gsm_a.x.apn"), "none");
    EXPECT_EQ(member_of(R"({"nas-eps.apn": "1"})", "gsm_a.x.apn"), "none");
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
