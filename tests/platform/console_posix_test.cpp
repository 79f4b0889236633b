#include <filesystem>

#include <gtest/gtest.h>

#include "platform/console/console.h"
#include "tests/support/files.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

namespace fs = std::filesystem;
using TESTING::ordinary_user;

class write_obstacles : public TESTING::scratch_test {
  protected:
    write_obstacles() {
        // The user whose rights are asked for must get this far.
        fs::permissions(scratch(), fs::perms::all);
        fs::create_directory("folder");
    }

    static void expect_refusal_without(fs::perms missing) {
        fs::permissions("folder", fs::perms::all & ~missing);
        {
            const ordinary_user user;
            EXPECT_EQ(write_obstacle("folder"), "Permission denied");
        }
        fs::permissions("folder", fs::perms::owner_all);
    }
};

TEST_F(write_obstacles, are_none_in_a_folder_that_may_be_entered_and_written) {
    fs::permissions("folder", fs::perms::all);
    const ordinary_user user;
    EXPECT_EQ(write_obstacle("folder"), std::nullopt);
}

TEST_F(write_obstacles, are_rights_to_write_without_those_to_enter) {
    expect_refusal_without(fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec);
}

TEST_F(write_obstacles, are_rights_to_enter_without_those_to_write) {
    expect_refusal_without(fs::perms::owner_write | fs::perms::group_write |
                           fs::perms::others_write);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
