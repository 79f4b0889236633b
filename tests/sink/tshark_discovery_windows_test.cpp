#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sink/tshark_discovery.h"
#include "tests/support/files.h"
#include "tests/support/program_files_windows.h"

namespace KIVRA::TSHARK::SINK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

class discovery_on_windows : public TESTING::scratch_test {};

TEST_F(discovery_on_windows, ends_in_program_files) {
    const TESTING::installation installation;
    for (const char* path : {"", ";", R"(C:\Windows;Q:\;nothing)"}) {
        EXPECT_EQ(discover_tshark_directory(path), installation.directory) << path;
    }
}

TEST_F(discovery_on_windows, prefers_an_installation_in_a_folder_of_path) {
    const TESTING::installation installation;
    fs::create_directories("my tools (x)/WireShark-Portable");
    const fs::path tools = scratch() / "my tools (x)";
    const std::string path = R"(C:\Windows\system32;)" + tools.string() + R"(;C:\Program Files)";
    EXPECT_EQ(discover_tshark_directory(path), tools / "WireShark-Portable");
}

TEST_F(discovery_on_windows, takes_a_folder_that_ends_in_a_separator) {
    fs::create_directories("tools/wireshark");
    const std::string tools = (scratch() / "tools").string();
    EXPECT_EQ(discover_tshark_directory(tools + "\\"), fs::path(tools) / "wireshark");
}

TEST_F(discovery_on_windows, reads_path_in_the_ansi_code_page) {
    fs::create_directories(fs::path(L"\u00E4") / "wireshark");
    EXPECT_EQ(discover_tshark_directory("\xE4"), fs::path(L"\u00E4") / "wireshark");
}

TEST_F(discovery_on_windows, passes_over_names_that_only_begin_alike_in_another_alphabet) {
    fs::create_directories(fs::path("tools") / L"W\u0130RESHARK");
    EXPECT_THROW(discover_tshark_directory("tools"), std::runtime_error);
}

TEST_F(discovery_on_windows, wants_tshark_exe) {
    fs::create_directories("tools");
    TESTING::write_file("tools/tshark", "");
    EXPECT_THROW(tshark_executable("tools"), std::runtime_error);
}

TEST_F(discovery_on_windows, fails_with_status_where_a_folder_cannot_be_queried) {
    fs::create_directories("tools/wireshark");
    EXPECT_THAT([] { discover_tshark_directory(R"(\\?\x;tools)"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("status")));
}

TEST_F(discovery_on_windows, fails_with_exists_where_the_executable_cannot_be_queried) {
    EXPECT_THAT([] { tshark_executable(R"(\\?\x)"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("exists")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::SINK
