#include "replay/explanations.h"

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::HasSubstr;

struct explanation_case {
    const char* complaint;
    const char* words;
};

class explanations : public testing::TestWithParam<explanation_case> {};

TEST_P(explanations, tell_what_a_complaint_means) {
    EXPECT_THAT(explanation_of(GetParam().complaint), HasSubstr(GetParam().words));
}

INSTANTIATE_TEST_SUITE_P(
    complaints, explanations,
    testing::Values(
        explanation_case{"invalid stoi argument", "lab networks such as 001/01"},
        explanation_case{"[json.exception.type_error.302] type must be string, but is null",
                         "no name"},
        explanation_case{"stoi argument out of range", "no 32-bit number"},
        explanation_case{"[json.exception.parse_error.101] parse error at line 1", "is no JSON"},
        explanation_case{"[json.exception.type_error.302] type must be string, but is number",
                         "in a form"},
        explanation_case{"output of tshark is nested more than 1000 levels deep", "nested more"},
        explanation_case{"cannot open file", "left no output"},
        explanation_case{"output of tshark ended before it came to this record", "--batch"},
        explanation_case{"invoking tshark failed with error: 2", "could not create a process"},
        explanation_case{"cut short by the snapshot length: 13 of 99 bytes captured", "beginning"},
        explanation_case{"22 mapping not found", "the field is left out"}));

TEST(explanation, is_not_given_for_what_speaks_for_itself) {
    EXPECT_EQ(explanation_of("no dissector name among the packet's tags"), "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
