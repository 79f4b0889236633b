#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/program_files_windows.h"

namespace KIVRA::TSHARK {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TESTING::host;
using testing::Pair;

class init_on_windows : public TESTING::scratch_test {
  protected:
    host host_;

  private:
    TESTING::environment_guard path_{"PATH"};
};

TEST_F(init_on_windows, fails_where_the_executable_cannot_be_queried) {
    EXPECT_EQ(host_.init({{"tshark_directory", R"(\\?\x)"}}), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("exists"), 1U)));
}

TEST_F(init_on_windows, finds_an_installation_in_program_files_that_then_works) {
    const TESTING::installation installation;
    TESTING::set_environment("PATH", R"(C:\Windows;C:\Windows\system32)");
    TESTING::fake_tshark_prints("[]");
    ASSERT_EQ(host_.init({}), 0);
    EXPECT_EQ(host_.data("nas-eps", ""), 0) << host_.last_error().first;
    EXPECT_EQ(host_.logs.size(), 1U);
}

}  // namespace
}  // namespace KIVRA::TSHARK
