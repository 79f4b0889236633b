#include <windows.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "context/file_status.h"
#include "context/sink_context.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

class file_status_on_windows : public TESTING::scratch_test {};

/// A device that isn't there: neither a file nor a missing file.
const std::string no_device = R"(\\?\x)";

TEST_F(file_status_on_windows, names_the_query_that_failed) {
    EXPECT_THAT([] { entry_exists(no_device); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("exists")));
}

TEST_F(file_status_on_windows, that_can_not_be_told_does_not_stop_a_release) {
    ASSERT_THROW(entry_exists(no_device), fs::filesystem_error);
    const sink_context context(nullptr, nullptr, "t", no_device, "");
}

TEST_F(file_status_on_windows, names_the_removal_of_what_could_not_be_queried) {
    EXPECT_THAT([] { remove_entry(no_device); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("remove")));
}

TEST_F(file_status_on_windows, removes_what_is_read_only) {
    TESTING::write_file("file", "");
    ASSERT_TRUE(SetFileAttributesW(L"file", FILE_ATTRIBUTE_READONLY));
    fs::create_directory("folder");
    ASSERT_TRUE(SetFileAttributesW(L"folder", FILE_ATTRIBUTE_READONLY));
    remove_entry("file");
    remove_entry("folder");
    EXPECT_THAT(TESTING::names_in("."), testing::IsEmpty());
}

TEST_F(file_status_on_windows, takes_what_can_be_no_name_for_missing) {
    for (const char* name : {"\"quoted\"", "a*b", "a<b", R"(Q:\no\drive)", "file\\"}) {
        EXPECT_FALSE(entry_exists(name)) << name;
    }
}

TEST_F(file_status_on_windows, takes_both_separators_and_one_at_the_end) {
    fs::create_directories("folder/inside");
    for (const char* name :
         {"folder\\", "folder/inside", "folder\\inside\\", "C:\\", "C:/Windows"}) {
        EXPECT_TRUE(entry_exists(name)) << name;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK
