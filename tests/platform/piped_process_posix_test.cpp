#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/piped_process.h"
#include "tests/support/child_posix.h"
#include "tests/support/files.h"
#include "tests/support/limits_posix.h"
#include "tests/support/privileges_posix.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

namespace fs = std::filesystem;
using TESTING::in_child;
using TESTING::limit_guard;

std::unique_ptr<piped_process> start_script(const std::string& script) {
    return std::make_unique<piped_process>("/bin/sh", std::vector<std::string>{"-c", script});
}

/// Waits for a line of the output.
std::string read_line(piped_process& process) {
    std::string line;
    for (;;) {
        char c = 0;
        const auto moved = process.exchange("", {&c, 1}, /*wait=*/true);
        if (moved.ended || c == '\n') {
            return line;
        }
        line += c;
    }
}

/// What a script prints.
std::string output_of(const std::string& script) {
    const auto process = start_script(script);
    std::string output;
    std::array<char, 1'000> room{};
    for (;;) {
        const auto moved = process->exchange("", room, /*wait=*/true);
        output.append(room.data(), moved.read);
        if (moved.ended) {
            return output;
        }
    }
}

void expect_echo(piped_process& process) {
    EXPECT_EQ(process.exchange("text\n", {}, /*wait=*/true).written, 5U);
    EXPECT_EQ(read_line(process), "text");
}

/// The number of the error for which a program is not started; none when it is.
std::optional<std::uint32_t> start_error(const fs::path& program) {
    try {
        const piped_process process(program, {});
    } catch (const process_not_started& failure) {
        return failure.error();
    }
    return std::nullopt;
}

void expect_no_children() {
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

/// Makes orphans among the descendants this process's children.
class subreaper {
  public:
    subreaper() { EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }
    ~subreaper() { EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 0), 0); }
    subreaper(const subreaper&) = delete;
    subreaper& operator=(const subreaper&) = delete;
};

class piped_processes_on_posix : public TESTING::scratch_test {};

TEST_F(piped_processes_on_posix, that_can_not_be_started_give_the_error_number) {
    EXPECT_EQ(start_error("missing"), ENOENT);
    EXPECT_EQ(start_error("."), EACCES);
    TESTING::write_file("text", "no program");
    EXPECT_EQ(start_error("text"), EACCES);
    fs::permissions("text", fs::perms::owner_all);
    EXPECT_EQ(start_error("text"), ENOEXEC);
    EXPECT_EQ(start_error("true"), ENOENT);
    {
        const limit_guard limit(RLIMIT_NPROC, 0);
        const TESTING::ordinary_user user;
        EXPECT_EQ(start_error("/bin/true"), EAGAIN);
    }
    {
        const limit_guard limit(RLIMIT_NOFILE, 5);
        EXPECT_EQ(start_error("/bin/true"), EMFILE);
    }
    EXPECT_EQ(start_error("/bin/true"), std::nullopt);
}

TEST_F(piped_processes_on_posix, leave_no_descriptor_and_no_child_behind) {
    const auto descriptors = TESTING::names_in("/proc/self/fd");
    for (const auto* script :
         {"cat", "exit", "exec <&- >&-; exec cat /dev/zero >&2", "kill -STOP $$"}) {
        auto process = start_script(script);
        process->exchange("text", {}, /*wait=*/true);
        process.reset();
        expect_no_children();
    }
    start_error("missing");
    expect_no_children();
    EXPECT_EQ(TESTING::names_in("/proc/self/fd"), descriptors);
}

TEST_F(piped_processes_on_posix, get_two_pipes_and_no_other_descriptor_of_the_host) {
    const int inheritable = ::open("/dev/null", O_RDONLY);
    const int high = ::fcntl(inheritable, F_DUPFD, 200);
    ASSERT_GE(high, 200);
    const auto other = start_script("cat");
    const std::string streams = output_of(
        "ls /proc/$$/fd; for i in 0 1 2; do readlink /proc/$$/fd/$i | sed 's/:.*//'; done");
    ::close(high);
    ::close(inheritable);
    EXPECT_EQ(streams, "0\n1\n2\npipe\npipe\n/dev/null\n");
}

TEST_F(piped_processes_on_posix, keep_their_pipes_from_what_the_host_starts_itself) {
    const auto list = [] { return TESTING::run_process({"/bin/ls", "/proc/self/fd"}).output; };
    const std::string before = list();
    const auto process = start_script("cat");
    EXPECT_EQ(list(), before);
}

TEST_F(piped_processes_on_posix, end_with_what_they_have_started) {
    const subreaper reaper;
    auto process = start_script("sleep inf & echo $!; wait");
    const pid_t number = std::stoi(read_line(*process));
    process.reset();
    int status = 0;
    EXPECT_EQ(waitpid(number, &status, 0), number);
    EXPECT_TRUE(WIFSIGNALED(status));
}

TEST_F(piped_processes_on_posix, end_also_outside_of_the_group_that_was_made_for_them) {
    const auto script = R"(
import os, signal
os.setpgid(0, os.getpgid(os.getppid()))
print(os.getpgid(0), flush=True)
signal.pause())";
    std::optional<piped_process> process(std::in_place, "/usr/bin/python3",
                                         std::vector<std::string>{"-c", script});
    EXPECT_EQ(std::stoi(read_line(*process)), ::getpgrp());
    process.reset();
    expect_no_children();
}

TEST_F(piped_processes_on_posix, end_whatever_signals_they_ignore) {
    auto process = start_script("trap '' HUP INT TERM; echo ready; exec sleep inf");
    EXPECT_EQ(read_line(*process), "ready");
    process.reset();
    expect_no_children();
}

TEST_F(piped_processes_on_posix, serve_a_host_without_standard_streams) {
    for (unsigned int closed = 1; closed < 8; ++closed) {
        in_child([&] {
            for (int stream = 0; stream < 3; ++stream) {
                if ((closed & (1U << static_cast<unsigned int>(stream))) != 0) {
                    ::close(stream);
                }
            }
            const auto process = start_script("readlink /proc/$$/fd/2; exec cat");
            EXPECT_EQ(read_line(*process), "/dev/null");
            expect_echo(*process);
            process->close_input();
            EXPECT_EQ(read_line(*process), "");
        });
    }
}

TEST_F(piped_processes_on_posix,
       begin_with_the_signals_of_a_fresh_process_and_a_group_of_their_own) {
    in_child([] {
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGTERM);
        ASSERT_EQ(sigprocmask(SIG_BLOCK, &blocked, nullptr), 0);
        static_cast<void>(::signal(SIGPIPE, SIG_IGN));
        static_cast<void>(::signal(SIGCHLD, SIG_IGN));
        // Without a shell, which clears the mask that it was given.
        piped_process process("/bin/grep", {"-E", "SigBlk|SigIgn", "/proc/self/status"});
        EXPECT_EQ(read_line(process), "SigBlk:\t0000000000000000");
        const auto ignored = std::stoull(read_line(process).substr(8), nullptr, 16);
        EXPECT_EQ(ignored & (1ULL << (SIGPIPE - 1)), 0U);
        EXPECT_EQ(ignored & (1ULL << (SIGCHLD - 1)), 0U);
        const auto script = start_script("cut -d' ' -f5 /proc/$$/stat");
        EXPECT_NE(std::stoi(read_line(*script)), ::getpgrp());
    });
}

bool is_pending(int signal) {
    sigset_t pending;
    EXPECT_EQ(sigpending(&pending), 0);
    return sigismember(&pending, signal) == 1;
}

/// Writes to a program that has closed its input and runs on.
void write_into_the_void() {
    const auto process = start_script("exec <&-; echo closed; exec sleep inf");
    EXPECT_EQ(read_line(*process), "closed");
    const std::string text(1'000'000, 'x');
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(process->exchange(text, {}, /*wait=*/true).written, text.size());
    }
    std::array<char, 10> room{};
    EXPECT_FALSE(process->exchange("", room, /*wait=*/false).ended);
}

TEST_F(piped_processes_on_posix, do_not_send_the_host_a_signal_when_they_close_their_input) {
    in_child([] {
        static_cast<void>(::signal(SIGPIPE, SIG_DFL));
        write_into_the_void();
        EXPECT_FALSE(is_pending(SIGPIPE));
        sigset_t mask;
        ASSERT_EQ(sigprocmask(SIG_BLOCK, nullptr, &mask), 0);
        EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
    });
}

TEST_F(piped_processes_on_posix, leave_the_hosts_handling_of_that_signal_alone) {
    in_child([] {
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGPIPE);
        ASSERT_EQ(sigprocmask(SIG_BLOCK, &blocked, nullptr), 0);
        write_into_the_void();
        EXPECT_FALSE(is_pending(SIGPIPE));
        ASSERT_EQ(raise(SIGPIPE), 0);
        write_into_the_void();
        EXPECT_TRUE(is_pending(SIGPIPE));
    });
}

TEST_F(piped_processes_on_posix, serve_a_host_that_ignores_their_end) {
    in_child([] {
        static_cast<void>(::signal(SIGCHLD, SIG_IGN));
        expect_echo(*start_script("cat"));
        EXPECT_EQ(read_line(*start_script("exit")), "");
        expect_no_children();
    });
}

TEST_F(piped_processes_on_posix, serve_a_host_that_collects_every_child) {
    in_child([] {
        static_cast<void>(::signal(SIGCHLD, [](int) {
            const int error = errno;
            while (waitpid(-1, nullptr, WNOHANG) > 0) {
            }
            errno = error;
        }));
        expect_echo(*start_script("cat"));
        EXPECT_EQ(read_line(*start_script("exit")), "");
        expect_no_children();
    });
}

TEST_F(piped_processes_on_posix, are_waited_for_through_interruptions) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction former {};
    sigaction(SIGUSR1, &action, &former);
    const auto process = start_script("kill -USR1 " + std::to_string(::getpid()) + R"(
        i=0
        while [ $i -lt 30000 ]; do i=$((i + 1)); done
        echo end)");
    EXPECT_EQ(read_line(*process), "end");
    sigaction(SIGUSR1, &former, nullptr);
}

TEST_F(piped_processes_on_posix, have_ended_in_a_process_that_the_host_forks) {
    auto process = start_script("cat");
    in_child([&] {
        std::array<char, 10> room{};
        const auto moved = process->exchange("text", room, /*wait=*/true);
        EXPECT_TRUE(moved.ended);
        EXPECT_EQ(moved.written, 0U);
        process.reset();
    });
    expect_echo(*process);
}

TEST_F(piped_processes_on_posix, end_with_a_host_that_is_killed) {
    const subreaper reaper;
    std::array<int, 2> numbers{};
    ASSERT_EQ(pipe(numbers.data()), 0);
    const pid_t killed_host = ::fork();
    if (killed_host == 0) {
        const auto process = start_script("echo $$; exec cat");
        const pid_t number = std::stoi(read_line(*process));
        EXPECT_EQ(::write(numbers[1], &number, sizeof number), ssize_t{sizeof number});
        ::pause();
        ::_exit(0);
    }
    pid_t number = 0;
    ASSERT_EQ(::read(numbers[0], &number, sizeof number), ssize_t{sizeof number});
    EXPECT_EQ(::kill(killed_host, SIGKILL), 0);
    EXPECT_EQ(waitpid(killed_host, nullptr, 0), killed_host);
    int status = -1;
    EXPECT_EQ(waitpid(number, &status, 0), number);
    EXPECT_TRUE(WIFEXITED(status));
    ::close(numbers[0]);
    ::close(numbers[1]);
}

/// Reads the output to its end.
void finish(piped_process& process) {
    std::array<char, 1'000> room{};
    while (!process.exchange("", room, /*wait=*/true).ended) {
    }
}

std::unique_ptr<piped_process> finished_script(const std::string& script, error_text errors) {
    auto process =
        std::make_unique<piped_process>("/bin/sh", std::vector<std::string>{"-c", script}, errors);
    finish(*process);
    return process;
}

TEST_F(piped_processes_on_posix, tell_their_exit_status) {
    EXPECT_EQ(finished_script("exit 0", error_text::dropped)->exit_status(), 0);
    const auto process = finished_script("exit 7", error_text::dropped);
    EXPECT_EQ(process->exit_status(), 7);
    EXPECT_EQ(process->exit_status(), 7);
}

TEST_F(piped_processes_on_posix, tell_the_signal_that_ended_them) {
    EXPECT_EQ(finished_script("kill -TERM $$", error_text::dropped)->exit_status(), 128 + SIGTERM);
}

TEST_F(piped_processes_on_posix, leave_no_child_behind_their_exit_status) {
    auto process = finished_script("exit 7", error_text::dropped);
    EXPECT_EQ(process->exit_status(), 7);
    expect_no_children();
    process.reset();
}

TEST_F(piped_processes_on_posix, keep_what_they_print_to_their_standard_error) {
    const auto process =
        finished_script("echo first >&2; echo output; echo second >&2", error_text::kept);
    EXPECT_EQ(process->printed_errors(), "first\nsecond\n");
    EXPECT_EQ(process->printed_errors(), "first\nsecond\n");
}

TEST_F(piped_processes_on_posix, tell_what_they_have_printed_while_they_run) {
    const auto process =
        std::make_unique<piped_process>("/bin/sh",
                                        std::vector<std::string>{"-c",
                                                                 "echo error >&2; echo output; "
                                                                 "read x; echo more >&2; echo x"},
                                        error_text::kept);
    EXPECT_EQ(read_line(*process), "output");
    EXPECT_EQ(process->printed_errors(), "error\n");
    process->exchange("\n", {}, /*wait=*/true);
    EXPECT_EQ(read_line(*process), "x");
    EXPECT_EQ(process->printed_errors(), "error\nmore\n");
}

TEST_F(piped_processes_on_posix, keep_64_kib_of_errors) {
    const auto process = finished_script("head -c 100000 /dev/zero >&2", error_text::kept);
    EXPECT_EQ(process->printed_errors(), std::string(65'536, '\0'));
}

TEST_F(piped_processes_on_posix, keep_no_errors_unless_asked) {
    EXPECT_EQ(finished_script("echo error >&2", error_text::dropped)->printed_errors(), "");
}

TEST_F(piped_processes_on_posix, leave_no_descriptor_of_kept_errors_behind) {
    const auto descriptors = TESTING::names_in("/proc/self/fd");
    finished_script("echo error >&2", error_text::kept);
    EXPECT_EQ(TESTING::names_in("/proc/self/fd"), descriptors);
}

// What is not there yet is waited for up to a day, so that a test which waits for the wrong thing
// runs into its time limit.
constexpr std::chrono::hours day{24};

TEST_F(piped_processes_on_posix, are_waited_for_until_they_print) {
    const auto process = start_script("read x; echo output; exec cat");
    process->exchange("\n", {}, /*wait=*/true);
    process->wait({.input = false, .output = true}, day);
    std::array<char, 10> room{};
    EXPECT_GT(process->exchange("", room, /*wait=*/false).read, 0U);
}

TEST_F(piped_processes_on_posix, are_waited_for_until_they_end) {
    const auto process = start_script("exit");
    process->wait({.input = false, .output = true}, day);
    std::array<char, 10> room{};
    EXPECT_TRUE(process->exchange("", room, /*wait=*/false).ended);
}

TEST_F(piped_processes_on_posix, are_waited_for_until_they_take_input) {
    const auto process = start_script("exec cat >/dev/null");
    const std::string much(1'000'000, 'x');
    process->exchange(much, {}, /*wait=*/true);
    process->wait({.input = true, .output = false}, day);
    EXPECT_GT(process->exchange(much, {}, /*wait=*/false).written, 0U);
}

TEST_F(piped_processes_on_posix, print_to_a_host_that_sleeps_since_they_take_no_input) {
    const auto process = start_script(R"(
        until [ -e full ]; do :; done
        until grep -q '^[0-9]* (.*) S' "/proc/$PPID/stat"; do :; done
        echo x
        mkfifo silent
        exec cat silent)");
    const std::string much(1'000'000, 'x');
    while (process->exchange(much, {}, /*wait=*/false).written != 0) {
    }
    TESTING::write_file("full", "");
    std::array<char, 10> room{};
    EXPECT_EQ(process->exchange(much, room, /*wait=*/true).read, 2U);
}

TEST_F(piped_processes_on_posix, are_waited_for_until_something_else_is_ready) {
    const auto process = start_script("exec cat");
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    process->wait({.input = false, .output = true, .other = ends[0]}, day);
    ::close(ends[1]);
    char c = 0;
    ASSERT_EQ(::read(ends[0], &c, 1), 1);
    // The end of a pipe is an occasion, too.
    process->wait({.input = false, .output = true, .other = ends[0]}, day);
    ::close(ends[0]);
    expect_echo(*process);
}

TEST_F(piped_processes_on_posix, are_not_waited_for_beyond_the_given_time) {
    const auto process = start_script("exec cat");
    process->wait({.input = false, .output = true}, std::chrono::milliseconds(1));
    expect_echo(*process);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
