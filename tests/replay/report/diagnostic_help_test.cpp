#include "replay/report/diagnostic_help.h"

#include <ostream>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::HasSubstr;

struct help_case {
    const char* text;
    const char* words;
};

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest looks for this name
void PrintTo(const help_case& tried, std::ostream* stream) {
    *stream << tried.text;
}

class help_for_failed_analyses : public testing::TestWithParam<help_case> {};

TEST_P(help_for_failed_analyses, tells_what_the_text_means) {
    EXPECT_THAT(help_for(record_failure{failure_kind::analysis, GetParam().text}),
                HasSubstr(GetParam().words));
}

INSTANTIATE_TEST_SUITE_P(
    texts, help_for_failed_analyses,
    testing::Values(
        help_case{"invalid stoi argument", "lab networks such as 001/01"},
        help_case{"[json.exception.type_error.302] type must be string, but is null", "no name"},
        help_case{"stoi argument out of range", "no 32-bit number"},
        help_case{"[json.exception.parse_error.101] parse error at line 1", "is no JSON"},
        help_case{"[json.exception.type_error.302] type must be string, but is number",
                  "in a form"},
        help_case{"output of tshark is nested more than 1000 levels deep", "nested more"},
        help_case{"cannot open file", "left no output"}));

TEST(help_for_failures, goes_by_their_kind) {
    EXPECT_THAT(help_for(record_failure{failure_kind::truncated_packet, "cannot open file"}),
                HasSubstr("beginning of the packet"));
    EXPECT_EQ(help_for(record_failure{failure_kind::malformed_packet, "cannot open file"}), "");
}

TEST(help_for_failures, is_not_given_where_the_text_says_enough) {
    EXPECT_EQ(help_for(record_failure{failure_kind::analysis, "unknown error"}), "");
}

TEST(help_for_log_messages, tells_what_they_mean) {
    EXPECT_THAT(help_for(log_message{5, "invoking tshark failed with error: 11"}),
                HasSubstr("could not start a process"));
    EXPECT_THAT(help_for(log_message{3, "22 mapping not found"}),
                HasSubstr("the field is left out"));
    EXPECT_EQ(help_for(log_message{3, "other"}), "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
