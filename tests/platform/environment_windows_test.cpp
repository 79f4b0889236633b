#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

class path_variables_on_windows : public testing::Test {
  private:
    TESTING::environment_guard guard_{"PATH"};
};

TEST_F(path_variables_on_windows, come_from_the_runtime_first) {
    TESTING::set_environment("PATH", "the runtime's");
    SetEnvironmentVariableA("PATH", "the system's");
    EXPECT_EQ(path_variable(), "the runtime's");
}

TEST_F(path_variables_on_windows, come_from_the_system_where_the_runtime_has_none) {
    TESTING::set_environment("PATH", std::nullopt);
    SetEnvironmentVariableA("PATH", "the system's");
    EXPECT_EQ(path_variable(), "the system's");
}

TEST_F(path_variables_on_windows, may_be_empty_in_the_system) {
    TESTING::set_environment("PATH", "");
    EXPECT_EQ(path_variable(), "");
}

TEST(path_separators_on_windows, are_semicolons) {
    EXPECT_EQ(path_separator(), ';');
}

TEST(executable_names_on_windows, are_tshark_exe_alone) {
    EXPECT_THAT(tshark_executable_names(), testing::ElementsAre("tshark.exe"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
