#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

class path_variables : public testing::Test {
  private:
    TESTING::environment_guard guard_{"PATH"};
};

TEST_F(path_variables, have_the_value_that_was_set) {
    TESTING::set_environment("PATH", "a;b:c");
    EXPECT_EQ(path_variable(), "a;b:c");
}

TEST_F(path_variables, have_no_value_when_not_set) {
    TESTING::set_environment("PATH", std::nullopt);
    EXPECT_EQ(path_variable(), std::nullopt);
}

TEST(executable_names, begin_with_tshark_exe) {
    EXPECT_EQ(tshark_executable_names().front(), "tshark.exe");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
