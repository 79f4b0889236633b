#include "analysis/single_tshark.h"

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

class output_file : public TESTING::scratch_test {};

TEST_F(output_file, is_read_whole) {
    const std::string content(200'000, 'x');
    TESTING::write_file("output.json", content + "\nend");
    EXPECT_EQ(read_output("output.json"), content + "\nend");
}

TEST_F(output_file, may_be_empty) {
    TESTING::write_file("output.json", "");
    EXPECT_EQ(read_output("output.json"), "");
}

TEST_F(output_file, must_be_there) {
    EXPECT_THAT([] { read_output("output.json"); },
                ThrowsMessage<std::runtime_error>(StrEq("cannot open file")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
