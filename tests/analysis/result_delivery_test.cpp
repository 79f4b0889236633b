#include "analysis/result_delivery.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

class documents : public testing::Test {
  protected:
    void deliver(const json& document) { deliver_result({}, document, note, &texts_); }

    static void note(void* user_data, const kivra_annotated_chunk* chunk) {
        static_cast<std::vector<std::string>*>(user_data)->emplace_back(chunk->text);
    }

    std::vector<std::string> texts_;
};

TEST_F(documents, go_back_indented_by_four_blanks) {
    deliver(json::parse(R"({"a": {"b": 1}})"));
    EXPECT_THAT(texts_, ElementsAre("{\n    \"a\": {\n        \"b\": 1\n    }\n}"));
}

TEST_F(documents, go_back_with_non_ascii_texts_as_they_are) {
    deliver(json{{"mnc", "Telef\xC3\xB3nica"}});
    EXPECT_THAT(texts_, ElementsAre("{\n    \"mnc\": \"Telef\xC3\xB3nica\"\n}"));
}

TEST_F(documents, go_nowhere_without_a_callback) {
    EXPECT_NO_THROW(deliver_result({}, json{{"mnc", "\xFF"}}, nullptr, nullptr));
}

TEST_F(documents, that_are_no_utf8_do_not_go_back) {
    EXPECT_THAT(
        [this] {
            deliver(json{{"mnc", "\xFF"}});
        },
        ThrowsMessage<json::type_error>(HasSubstr("type_error.316")));
    EXPECT_THAT(texts_, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
