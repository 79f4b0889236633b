#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sink/tshark_discovery.h"
#include "tests/support/files.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK::SINK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

class discovery_on_posix : public TESTING::scratch_test {};

const std::string impossible_name(5000, 'x');

TEST_F(discovery_on_posix, ends_in_program_files_which_is_an_ordinary_name_here) {
    fs::create_directories(R"(C:\Program Files/Wireshark)");
    EXPECT_EQ(discover_tshark_directory(""), fs::path(R"(C:\Program Files)") / "Wireshark");
    fs::create_directories("tools/WireShark-Portable");
    EXPECT_EQ(discover_tshark_directory("tools"), fs::path("tools") / "WireShark-Portable");
}

TEST_F(discovery_on_posix, takes_tshark_where_there_is_no_tshark_exe) {
    fs::create_directories("tools");
    TESTING::write_file("tools/tshark", "");
    EXPECT_EQ(tshark_executable("tools"), fs::path("tools") / "tshark");
    TESTING::write_file("tools/tshark.exe", "");
    EXPECT_EQ(tshark_executable("tools"), fs::path("tools") / "tshark.exe");
}

TEST_F(discovery_on_posix, fails_with_status_where_a_folder_cannot_be_queried) {
    fs::create_directories("tools/wireshark");
    EXPECT_THAT([] { discover_tshark_directory(impossible_name + ";tools"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("status")));
    fs::create_symlink("loop", "loop");
    EXPECT_THAT([] { discover_tshark_directory("loop;tools"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("status")));
}

TEST_F(discovery_on_posix, fails_with_directory_iterator_where_a_folder_cannot_be_listed) {
    fs::create_directories("tools/wireshark");
    fs::permissions("tools", fs::perms::none);
    const TESTING::ordinary_user user;
    EXPECT_THAT(
        [] { discover_tshark_directory("tools"); },
        ThrowsMessage<fs::filesystem_error>(HasSubstr("directory_iterator::directory_iterator")));
}

TEST_F(discovery_on_posix, fails_with_exists_where_the_executable_cannot_be_queried) {
    EXPECT_THAT([] { tshark_executable(impossible_name); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("exists")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::SINK
