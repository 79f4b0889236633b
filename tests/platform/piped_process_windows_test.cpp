#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include <gtest/gtest.h>

#include "platform/piped_process.h"
#include "tests/support/files.h"
#include "tests/support/handles_windows.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

using nlohmann::json;

/// The number of the error for which a program is not started; none when it is.
std::optional<std::uint32_t> start_error(const std::filesystem::path& program) {
    try {
        const piped_process process(program, {"end"});
    } catch (const process_not_started& failure) {
        return failure.error();
    }
    return std::nullopt;
}

/// Reads to the end of the output or of the room.
std::string read(piped_process& process, std::size_t size) {
    std::string text(size, '\0');
    std::size_t count = 0;
    for (bool ended = false; !ended && count < size;) {
        const auto moved = process.exchange("", std::span(text).subspan(count), /*wait=*/true);
        count += moved.read;
        ended = moved.ended;
    }
    text.resize(count);
    return text;
}

class piped_processes_on_windows : public TESTING::scratch_test {
  protected:
    /// What a process notes.
    static json probe() {
        piped_process process(KIVRA_PROCESS_PROBE, {"-Y", "a||b"});
        EXPECT_EQ(read(process, 100), "");
        return TESTING::read_json("probe.json");
    }

  private:
    TESTING::environment_guard variable_{"KIVRA_PROBE"};
};

TEST_F(piped_processes_on_windows, that_can_not_be_started_give_the_error_number) {
    EXPECT_EQ(start_error("no-such-program"), 2U);
    EXPECT_EQ(start_error("C:\\no\\such\\program"), 3U);
    TESTING::write_file("text", "no program");
    EXPECT_EQ(start_error("text"), 193U);
    EXPECT_EQ(start_error(KIVRA_PIPE_PROBE), std::nullopt);
}

TEST_F(piped_processes_on_windows, are_started_directly_and_without_a_window) {
    const json noted = probe();
    EXPECT_EQ(noted["command_line"], "\"" KIVRA_PROCESS_PROBE "\" \"-Y\" \"a||b\"");
    EXPECT_EQ(noted["directory"], scratch().string());
    EXPECT_EQ(noted["processes_of_its_console"], 1);
    EXPECT_EQ(noted["has_a_window"], false);
}

TEST_F(piped_processes_on_windows, get_no_other_handle_of_the_host) {
    TESTING::set_environment("KIVRA_PROBE", std::to_string(TESTING::inheritable_handle()));
    EXPECT_EQ(probe()["has_the_handle"], false);
}

TEST_F(piped_processes_on_windows, end_with_their_object) {
    {
        piped_process process(KIVRA_PIPE_PROBE, {"stay"});
        EXPECT_EQ(read(process, 5), "here;");
        EXPECT_EQ(TESTING::children().size(), 1U);
    }
    EXPECT_EQ(TESTING::children().size(), 0U);
}

/// The program to which a process has left its pipes; ends with this.
class heir {
  public:
    explicit heir(const std::string& number)
        : process_(OpenProcess(PROCESS_TERMINATE, FALSE, std::stoul(number))) {}
    ~heir() {
        TerminateProcess(process_, 0);
        CloseHandle(process_);
    }
    heir(const heir&) = delete;
    heir& operator=(const heir&) = delete;

    bool was_there() const { return process_ != nullptr; }

  private:
    HANDLE process_;
};

TEST_F(piped_processes_on_windows, that_leave_their_pipes_to_another_have_ended_all_the_same) {
    piped_process process(KIVRA_HEIR_PROBE, {});
    const heir other(read(process, 100));
    EXPECT_TRUE(other.was_there());
    EXPECT_EQ(process.exit_status(), 0);
}

TEST_F(piped_processes_on_windows, that_leave_their_pipes_to_another_take_no_more_input) {
    piped_process process(KIVRA_HEIR_PROBE, {});
    EXPECT_EQ(process.exit_status(), 0);
    const std::string much(1'000'000, 'm');
    EXPECT_EQ(process.exchange(much, {}, /*wait=*/true).written, much.size());
    const heir other(read(process, 100));
    EXPECT_TRUE(other.was_there());
}

TEST_F(piped_processes_on_windows, leave_no_handle_behind) {
    start_error(KIVRA_PIPE_PROBE);
    const auto before = TESTING::free_handle_places();
    start_error(KIVRA_PIPE_PROBE);
    start_error("no-such-program");
    EXPECT_EQ(TESTING::free_handle_places(), before);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
