#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/output_processing.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::ThrowsMessage;

constexpr auto too_deep = "output of tshark is nested more than 1000 levels deep";

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string nested_arrays(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

std::string nested_objects(std::size_t depth) {
    return repeated(R"({"a":)", depth) + "1" + std::string(depth, '}');
}

class nesting : public testing::Test {
  protected:
    void expect_taken_in(const std::string& text) {
        EXPECT_NO_THROW(process_output(context_, text)) << text.substr(0, 40);
    }
    void expect_too_deep(const std::string& text) {
        EXPECT_THAT([&] { process_output(context_, text); },
                    ThrowsMessage<std::runtime_error>(too_deep));
    }

    sink_context context_{nullptr, nullptr, "tshark", "output", {}};
};

TEST_F(nesting, may_be_as_deep_as_the_limit_and_no_deeper) {
    expect_taken_in(nested_arrays(deepest_nesting));
    expect_taken_in(nested_objects(deepest_nesting));
    expect_too_deep(nested_arrays(deepest_nesting + 1));
    expect_too_deep(nested_objects(deepest_nesting + 1));
}

TEST_F(nesting, counts_from_the_outermost_bracket_to_the_deepest) {
    expect_taken_in("[" + nested_arrays(deepest_nesting - 1) + "," +
                    nested_objects(deepest_nesting - 1) + "]");
    expect_too_deep("[1, " + nested_arrays(deepest_nesting) + "]");
}

TEST_F(nesting, does_not_count_brackets_in_texts) {
    expect_taken_in("[\"" + std::string(5'000, '[') + "\"]");
    expect_taken_in(R"({")" + std::string(5'000, '{') + R"(": 1})");
    expect_taken_in(R"(["\"[[\\", ")" + std::string(5'000, '[') + R"("])");
    expect_taken_in(R"(["\\\"", ")" + std::string(5'000, '{') + R"("])");
}

TEST_F(nesting, counts_brackets_behind_a_text_that_ends_with_a_backslash) {
    expect_too_deep(R"(["\\", )" + nested_arrays(deepest_nesting) + "]");
}

TEST_F(nesting, counts_what_a_repeated_name_hides) {
    expect_too_deep(R"({"a": )" + nested_arrays(deepest_nesting) + R"(, "a": 1})");
}

TEST_F(nesting, counts_only_in_a_text_that_is_json) {
    EXPECT_THAT([&] { process_output(context_, std::string(1'000'000, '[')); },
                ThrowsMessage<json::parse_error>(HasSubstr("parse_error.101")));
}

TEST_F(nesting, does_not_count_what_follows_a_nul) {
    using namespace std::string_literals;
    expect_taken_in("[]\0]][["s);
    expect_taken_in("[]\0"s + nested_arrays(deepest_nesting + 1));
}

TEST_F(nesting, may_be_absurd) {
    expect_too_deep(nested_arrays(1'000'000));
    expect_too_deep(nested_objects(1'000'000));
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
