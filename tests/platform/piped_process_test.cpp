#include "platform/piped_process.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

/// More than pipes and buffers hold.
constexpr std::size_t much = 10'000'000;

/// Reads up to a number of bytes or the end of the output, waiting for it.
std::string read(piped_process& process, std::size_t size) {
    std::string text(size, '\0');
    std::size_t count = 0;
    while (count < size) {
        const auto moved = process.exchange("", std::span(text).subspan(count), /*wait=*/true);
        count += moved.read;
        if (moved.ended) {
            break;
        }
    }
    text.resize(count);
    return text;
}

std::string read_to_the_end(piped_process& process) {
    return read(process, 2 * much);
}

void write(piped_process& process, std::string_view text) {
    while (!text.empty()) {
        text.remove_prefix(process.exchange(text, {}, /*wait=*/true).written);
    }
}

/// Pieces of text that are told apart.
std::string much_text() {
    std::string text;
    for (std::size_t i = 0; text.size() < much; ++i) {
        text += std::string(800, 'x') + std::to_string(i) + ';';
    }
    return text;
}

TEST(piped_processes, take_and_give_piece_by_piece) {
    piped_process process(KIVRA_PIPE_PROBE, {"echo"});
    for (const std::string text : {"one;", "two;", "three;"}) {
        write(process, text);
        EXPECT_EQ(read(process, text.size()), text);
    }
}

TEST(piped_processes, see_the_end_of_their_input_behind_what_was_written) {
    piped_process process(KIVRA_PIPE_PROBE, {"echo"});
    write(process, "a;b;");
    process.close_input();
    EXPECT_EQ(read_to_the_end(process), "a;b;");
}

TEST(piped_processes, have_no_input_but_what_came_before_its_end) {
    piped_process process(KIVRA_PIPE_PROBE, {"echo"});
    write(process, "a;");
    process.close_input();
    write(process, "b;");
    EXPECT_EQ(read_to_the_end(process), "a;");
}

TEST(piped_processes, go_on_ending) {
    piped_process process(KIVRA_PIPE_PROBE, {"end"});
    EXPECT_EQ(read_to_the_end(process), "");
    std::array<char, 10> room{};
    for (int i = 0; i < 2; ++i) {
        const auto moved = process.exchange("text", room, /*wait=*/true);
        EXPECT_EQ(moved.written, 0U);
        EXPECT_EQ(moved.read, 0U);
        EXPECT_TRUE(moved.ended);
    }
    process.close_input();
}

TEST(piped_processes, get_their_arguments_as_they_stand) {
    const std::vector<std::string> arguments{
        "list",     "",      " ",      "a b",    "a\tb",    R"(")",      R"(\)",      R"(a\)",
        R"(a b\\)", R"(\")", R"(a"b)", R"("a")", R"(\\"a)", "nas||rrc>", "%PATH% ^&", "'$x`y`"};
    std::string expected;
    for (const auto& argument : std::span(arguments).subspan(1)) {
        expected += argument + ';';
    }
    piped_process process(KIVRA_PIPE_PROBE, arguments);
    EXPECT_EQ(read_to_the_end(process), expected);
}

TEST(piped_processes, take_and_give_more_than_pipes_hold_at_once) {
    piped_process process(KIVRA_PIPE_PROBE, {"echo"});
    const std::string text = much_text();
    std::string_view input = text;
    std::string output;
    std::array<char, 100'000> room{};
    while (output.size() < text.size()) {
        const auto moved = process.exchange(input, room, /*wait=*/true);
        ASSERT_FALSE(moved.ended);
        input.remove_prefix(moved.written);
        output.append(room.data(), moved.read);
    }
    EXPECT_TRUE(output == text);
    EXPECT_EQ(input, "");
}

TEST(piped_processes, may_print_more_than_a_pipe_holds_before_they_read) {
    piped_process process(KIVRA_PIPE_PROBE, {"flood", std::to_string(much)});
    const std::string text = much_text();
    std::string_view input = text;
    std::string output;
    std::array<char, 1'000> room{};
    for (bool ended = false; !ended;) {
        const auto moved = process.exchange(input, room, /*wait=*/true);
        input.remove_prefix(moved.written);
        if (input.empty()) {
            process.close_input();
        }
        output.append(room.data(), moved.read);
        ended = moved.ended;
    }
    EXPECT_TRUE(output == std::string(much, 'f') + ';' + std::to_string(text.size()));
}

TEST(piped_processes, are_read_in_pieces_of_any_size) {
    piped_process process(KIVRA_PIPE_PROBE, {"list", "abc", "def"});
    std::string output;
    for (std::string piece = "first"; !piece.empty();) {
        piece = read(process, 1);
        output += piece;
    }
    EXPECT_EQ(output, "abc;def;");
}

TEST(piped_processes, are_not_waited_for_unless_asked) {
    piped_process process(KIVRA_PIPE_PROBE, {"stay"});
    EXPECT_EQ(read(process, 5), "here;");
    std::array<char, 10> room{};
    const auto moved = process.exchange("", room, /*wait=*/false);
    EXPECT_EQ(moved.written, 0U);
    EXPECT_EQ(moved.read, 0U);
    EXPECT_FALSE(moved.ended);
}

TEST(piped_processes, are_not_waited_for_when_there_is_nothing_to_move) {
    piped_process process(KIVRA_PIPE_PROBE, {"stay"});
    EXPECT_FALSE(process.exchange("", {}, /*wait=*/true).ended);
}

/// Writes until nothing more is taken.
void fill(piped_process& process) {
    const std::string text(much, 'x');
    std::string_view input = text;
    for (std::size_t written = 1; written > 0;) {
        written = process.exchange(input, {}, /*wait=*/false).written;
        input.remove_prefix(written);
    }
    EXPECT_GT(input.size(), 0U);
}

TEST(piped_processes, may_leave_their_input_unread) {
    piped_process process(KIVRA_PIPE_PROBE, {"stay"});
    fill(process);
    EXPECT_EQ(read(process, 5), "here;");
    fill(process);
    process.close_input();
}

TEST(piped_processes, tell_how_they_ended) {
    for (const auto& [task, status] : {std::pair("fail", 7), std::pair("list", 0)}) {
        piped_process process(KIVRA_PIPE_PROBE, {task});
        read_to_the_end(process);
        EXPECT_EQ(process.exit_status(), status);
    }
}

TEST(piped_processes, have_their_errors_kept_when_asked_to) {
    piped_process kept(KIVRA_PIPE_PROBE, {"fail"}, error_text::kept);
    read_to_the_end(kept);
    kept.exit_status();
    EXPECT_EQ(kept.printed_errors(), "a complaint");
    piped_process dropped(KIVRA_PIPE_PROBE, {"fail"});
    read_to_the_end(dropped);
    EXPECT_EQ(dropped.printed_errors(), "");
}

TEST(piped_processes, may_print_what_nobody_reads) {
    piped_process process(KIVRA_PIPE_PROBE, {"flood", std::to_string(much)});
    EXPECT_EQ(read(process, 1), "f");
}

TEST(piped_processes, lose_the_input_that_comes_when_they_are_gone) {
    piped_process process(KIVRA_PIPE_PROBE, {"end"});
    const std::string text(much, 'x');
    write(process, text);
    EXPECT_EQ(process.exchange(text, {}, /*wait=*/true).written, text.size());
    EXPECT_EQ(read_to_the_end(process), "");
}

TEST(piped_processes, do_not_hold_the_pipes_of_earlier_ones) {
    piped_process first(KIVRA_PIPE_PROBE, {"echo"});
    piped_process second(KIVRA_PIPE_PROBE, {"stay"});
    write(first, "a;");
    first.close_input();
    EXPECT_EQ(read_to_the_end(first), "a;");
    EXPECT_EQ(read(second, 5), "here;");
}

class folders_of_piped_processes : public TESTING::scratch_test {};

TEST_F(folders_of_piped_processes, may_have_names_of_any_alphabet) {
    const std::filesystem::path folder = u8"a b \u00E4\u0416";
    std::filesystem::create_directory(folder);
    const std::filesystem::path program =
        folder / std::filesystem::path(KIVRA_PIPE_PROBE).filename();
    std::filesystem::copy_file(KIVRA_PIPE_PROBE, program);
    piped_process process(program, {"list", "a"});
    EXPECT_EQ(read_to_the_end(process), "a;");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
