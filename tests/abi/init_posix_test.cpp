#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using TESTING::host;
using testing::Pair;

class init_on_posix : public TESTING::scratch_test {
  protected:
    host host_;
};

TEST_F(init_on_posix, fails_where_the_working_directory_is_gone) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(scratch() / "gone");
    EXPECT_EQ(host_.init_with_stand_in(), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("current_path()"), 1U)));
}

TEST_F(init_on_posix, fails_where_the_executable_cannot_be_queried) {
    EXPECT_EQ(host_.init({{"tshark_directory", std::string(5000, 'x')}}), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("exists"), 1U)));
}

TEST_F(init_on_posix, fails_where_a_name_for_the_output_cannot_be_queried) {
    // A working directory whose path leaves no room for a name below it.
    const std::string piece(200, 'd');
    while (fs::current_path().string().size() + piece.size() + 2 < 4080) {
        fs::create_directory(piece);
        fs::current_path(piece);
    }
    const std::string rest(4080 - fs::current_path().string().size() - 1, 'd');
    fs::create_directory(rest);
    fs::current_path(rest);
    EXPECT_EQ(host_.init_with_stand_in(), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("exists"), 1U)));
}

}  // namespace
}  // namespace KIVRA::TSHARK
