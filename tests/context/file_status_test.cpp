#include "context/file_status.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

class file_status : public TESTING::scratch_test {};

TEST_F(file_status, tells_whether_an_entry_exists) {
    TESTING::write_file("file", "");
    EXPECT_TRUE(entry_exists("file"));
    EXPECT_TRUE(entry_exists("."));
    EXPECT_FALSE(entry_exists("nothing"));
    EXPECT_FALSE(entry_exists("file/below"));
}

TEST_F(file_status, removes_a_single_entry_and_does_not_mind_a_missing_one) {
    TESTING::write_file("file", "");
    remove_entry("file");
    remove_entry("file");
    EXPECT_FALSE(entry_exists("file"));
}

TEST_F(file_status, names_the_removal_that_failed) {
    fs::create_directories("full/folder");
    EXPECT_THAT([] { remove_entry("full"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("remove")));
    EXPECT_TRUE(entry_exists("full/folder"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
