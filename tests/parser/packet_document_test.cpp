#include "parser/packet_document.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using nlohmann::json;

bool has_lte_rrc(const char* packet) {
    return has_layer(json::parse(packet), "lte_rrc");
}

TEST(packet_document, has_a_layer_of_any_type) {
    EXPECT_TRUE(has_lte_rrc(R"({"_source": {"layers": {"lte_rrc": {}}}})"));
    EXPECT_TRUE(has_lte_rrc(R"({"_source": {"layers": {"lte_rrc": "text"}}})"));
    EXPECT_TRUE(has_lte_rrc(R"({"_source": {"layers": {"lte_rrc": null}}})"));
}

TEST(packet_document, has_no_layer_without_source) {
    EXPECT_FALSE(has_lte_rrc(R"({"layers": {"lte_rrc": {}}})"));
    EXPECT_FALSE(has_lte_rrc("{}"));
}

TEST(packet_document, has_no_layer_when_source_is_no_object) {
    EXPECT_FALSE(has_lte_rrc(R"({"_source": [{"layers": {"lte_rrc": {}}}]})"));
    EXPECT_FALSE(has_lte_rrc(R"({"_source": "layers"})"));
}

TEST(packet_document, has_no_layer_when_layers_is_missing_or_no_object) {
    EXPECT_FALSE(has_lte_rrc(R"({"_source": {}})"));
    EXPECT_FALSE(has_lte_rrc(R"({"_source": {"layers": ["lte_rrc"]}})"));
    EXPECT_FALSE(has_lte_rrc(R"({"_source": {"layers": null}})"));
}

TEST(packet_document, has_no_layer_of_a_similar_name) {
    EXPECT_FALSE(has_lte_rrc(R"({"_source": {"layers": {"lte-rrc": {}, "LTE_RRC": {}}}})"));
}

TEST(packet_document, has_no_layer_when_it_is_no_object) {
    for (const char* packet : {"null", "[]", "1", R"("lte_rrc")"}) {
        EXPECT_FALSE(has_lte_rrc(packet)) << packet;
    }
}

TEST(packet_document, gives_a_layer_as_it_stands) {
    const json packet = json::parse(R"({"_source": {"layers": {"lte_rrc": {"a": "1"}}}})");
    EXPECT_EQ(layer(packet, "lte_rrc"), json::parse(R"({"a": "1"})"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
