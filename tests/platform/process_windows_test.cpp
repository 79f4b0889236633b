#include <windows.h>

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "platform/command_interpreter_windows.h"
#include "platform/platform.h"
#include "tests/support/files.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

using nlohmann::json;

class processes_on_windows : public TESTING::scratch_test {
  protected:
    /// What a process notes that is started instead of the interpreter.
    static json probe(const std::string& command_line) {
        EXPECT_EQ(run_command_line(command_line, KIVRA_PROCESS_PROBE), std::nullopt);
        return TESTING::read_json("probe.json");
    }

  private:
    TESTING::environment_guard variable_{"KIVRA_PROBE"};
};

TEST_F(processes_on_windows, are_the_command_interpreters_unless_told_otherwise) {
    EXPECT_STREQ(default_interpreter, "C:\\Windows\\system32\\cmd.exe");
    EXPECT_EQ(run_command_line("cmd /c \"echo \"a  b\"> \"c d\"\""), std::nullopt);
    EXPECT_EQ(TESTING::read_file("c d"), "\"a  b\"\r\n");
}

TEST(cmd_command_line, is_that_of_tshark_byte_for_byte) {
    const std::string capture = R"(C:\a b\P.pcapng)";
    EXPECT_EQ(
        cmd_command_line(R"(C:\T)", {"-Y", "nas-eps||lte_rrc", "-r", capture, "-T", "json"}, "J"),
        R"(cmd /c ""C:\T" -Y "nas-eps||lte_rrc" -r "C:\a b\P.pcapng" -T json > "J"")");
}

TEST(cmd_command_line, quotes_all_but_words) {
    EXPECT_EQ(cmd_command_line("T", {"a-Z9", "a.b", "", "%q%"}, "J"),
              R"(cmd /c ""T" a-Z9 "a.b" "" "%q%" > "J"")");
}

TEST(cmd_command_line, leaves_paths_as_they_are) {
    EXPECT_EQ(cmd_command_line("a b/$x&(1)", {}, "j'k\"l"), R"-(cmd /c ""a b/$x&(1)" > "j'k"l"")-");
}

TEST(cmd_command_line, is_utf8) {
    EXPECT_EQ(cmd_command_line(u8"\u00E4", {"\xC3\xA4"}, u8"\u20AC"),
              "cmd /c \"\"\xC3\xA4\" \"\xC3\xA4\" > \"\xE2\x82\xAC\"\"");
}

TEST(cmd_command_line, has_no_form_for_half_a_character) {
    EXPECT_THROW(cmd_command_line(L"\xD800", {}, "J"), std::system_error);
    EXPECT_THROW(cmd_command_line("T", {}, L"\xD800"), std::system_error);
}

TEST_F(processes_on_windows, print_into_the_file) {
    EXPECT_EQ(run_program(KIVRA_PROCESS_PROBE, {"a  b"}, "c d"), std::nullopt);
    EXPECT_EQ(TESTING::read_file("c d"), "");
    const std::string line = TESTING::read_json("probe.json")["command_line"];
    EXPECT_NE(line.find(" \"a  b\""), std::string::npos) << line;
}

TEST_F(processes_on_windows, are_waited_for) {
    run_command_line("cmd /c \"(for /l %i in (1,1,2000) do @echo %i) > long & echo end> file\"");
    EXPECT_EQ(TESTING::read_file("file"), "end\r\n");
}

TEST_F(processes_on_windows, do_not_tell_their_exit_status) {
    EXPECT_EQ(run_command_line("cmd /c \"exit 3\""), std::nullopt);
}

TEST_F(processes_on_windows, that_cannot_be_started_give_the_error_number) {
    EXPECT_EQ(run_command_line("cmd /c \"x\"", "no-such-interpreter"), 2U);
    EXPECT_EQ(run_command_line("cmd /c \"x\"", "C:\\no\\such\\interpreter"), 3U);
    TESTING::write_file("text", "no program");
    EXPECT_EQ(run_command_line("cmd /c \"x\"", "text"), 193U);
}

TEST_F(processes_on_windows, get_the_command_line_as_it_stands) {
    const std::string command_line = R"(cmd /c ""C:\a b\t.exe" -Y "x||y" %PATH% ^&(c) > "o"")";
    EXPECT_EQ(probe(command_line)["command_line"], command_line);
}

TEST_F(processes_on_windows, work_in_the_hosts_directory_with_its_environment) {
    TESTING::set_environment("KIVRA_PROBE", "a value");
    const json noted = probe("cmd");
    EXPECT_EQ(noted["directory"], scratch().string());
    EXPECT_EQ(noted["environment"], "a value");
}

TEST_F(processes_on_windows, have_a_console_of_their_own_without_a_window) {
    const json noted = probe("cmd");
    EXPECT_EQ(noted["processes_of_its_console"], 1);
    EXPECT_EQ(noted["has_a_window"], false);
}

TEST_F(processes_on_windows, get_a_start_up_record_that_says_nothing) {
    const json noted = probe("cmd");
    EXPECT_EQ(noted["start_up_size"], 104);
    EXPECT_EQ(noted["start_up_flags"], 0);
}

TEST_F(processes_on_windows, get_no_handle_of_the_host) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    // A number that no handle of a young process has.
    HANDLE handle = nullptr;
    for (int i = 0; i < 1000; ++i) {
        handle = CreateEventA(&inheritable, TRUE, FALSE, nullptr);
        ASSERT_NE(handle, nullptr);
    }
    TESTING::set_environment("KIVRA_PROBE",
                             std::to_string(reinterpret_cast<std::intptr_t>(handle)));
    EXPECT_EQ(probe("cmd")["has_the_handle"], false);
}

/// The free places for handles, as a hundred new ones take them.
std::vector<HANDLE> free_places() {
    std::vector<HANDLE> places(100);
    for (HANDLE& place : places) {
        place = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    }
    for (const HANDLE place : places) {
        CloseHandle(place);
    }
    std::ranges::sort(places);
    return places;
}

TEST_F(processes_on_windows, leave_no_handle_behind) {
    probe("cmd");
    const auto before = free_places();
    probe("cmd");
    EXPECT_EQ(free_places(), before);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
