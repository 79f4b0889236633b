#include "sink/tshark_discovery.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::SINK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::StrEq;
using testing::ThrowsMessage;

constexpr auto program_files = R"(C:\Program Files)";

class discovery : public TESTING::scratch_test {};

TEST_F(discovery, searches_the_folders_of_path_and_then_program_files) {
    EXPECT_THAT(candidate_directories(R"(C:\Tools;;C:\Apps)"),
                ElementsAre(R"(C:\Tools)", R"(C:\Apps)", program_files));
}

TEST_F(discovery, searches_program_files_alone_when_path_is_empty) {
    EXPECT_THAT(candidate_directories(""), ElementsAre(program_files));
    EXPECT_THAT(candidate_directories(";;;"), ElementsAre(program_files));
}

TEST_F(discovery, neither_trims_nor_unquotes_a_folder) {
    EXPECT_THAT(candidate_directories("; a ;\"b\";c:d;"),
                ElementsAre(" a ", "\"b\"", "c:d", program_files));
}

TEST_F(discovery, finds_nothing_when_path_is_not_set) {
    EXPECT_TRUE(discover_tshark_directory(std::nullopt).empty());
}

TEST_F(discovery, finds_an_entry_named_wireshark_something) {
    for (const char* name : {"wireshark", "Wireshark", "WIRESHARK", "wireshark-dev",
                             "WireShark-Portable", "wireshark.txt"}) {
        fs::create_directories("tools");
        TESTING::write_file(fs::path("tools") / name, "");
        EXPECT_EQ(discover_tshark_directory("tools"), fs::path("tools") / name);
        fs::remove_all("tools");
    }
}

TEST_F(discovery, passes_over_other_names) {
    fs::create_directories("tools/MyWireshark");
    fs::create_directories("tools/wireshar");
    fs::create_directories("tools/tshark.exe");
    EXPECT_THAT([] { discover_tshark_directory("tools"); },
                ThrowsMessage<std::runtime_error>(StrEq(
                    "tshark installation not found from path or default installation location")));
}

TEST_F(discovery, does_not_take_a_folder_of_path_for_the_installation) {
    fs::create_directories("Wireshark");
    TESTING::write_file("Wireshark/tshark.exe", "");
    EXPECT_THROW(discover_tshark_directory("Wireshark"), std::runtime_error);
}

TEST_F(discovery, takes_the_first_folder_that_holds_one) {
    fs::create_directories("first/nothing");
    fs::create_directories("second/wireshark-2");
    fs::create_directories("third/wireshark-3");
    EXPECT_EQ(discover_tshark_directory("first;second;third"), fs::path("second") / "wireshark-2");
}

TEST_F(discovery, skips_folders_that_do_not_exist_and_files) {
    fs::create_directories("tools/wireshark");
    TESTING::write_file("file", "");
    EXPECT_EQ(discover_tshark_directory("nothing;file;file/below;tools"),
              fs::path("tools") / "wireshark");
}

TEST_F(discovery, fails_when_path_is_set_and_no_folder_holds_one) {
    EXPECT_THAT([] { discover_tshark_directory(""); },
                ThrowsMessage<std::runtime_error>(StrEq(
                    "tshark installation not found from path or default installation location")));
}

TEST_F(discovery, of_the_executable_wants_a_directory) {
    TESTING::write_file("tshark.exe", "");
    EXPECT_THAT([] { tshark_executable(""); },
                ThrowsMessage<std::runtime_error>(
                    StrEq("tshark not found from path or default installation location")));
}

TEST_F(discovery, of_the_executable_finds_it_in_its_directory) {
    fs::create_directories("tools");
    TESTING::write_file("tools/tshark.exe", "");
    EXPECT_EQ(tshark_executable("tools"), fs::path("tools") / "tshark.exe");
}

TEST_F(discovery, of_the_executable_fails_where_there_is_none) {
    fs::create_directories("tools");
    for (const char* directory : {"tools", "nothing"}) {
        EXPECT_THAT([directory] { tshark_executable(directory); },
                    ThrowsMessage<std::runtime_error>(
                        StrEq("tshark not found from path or default installation location")));
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::SINK
