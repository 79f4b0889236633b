#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/child_posix.h"
#include "tests/support/files.h"
#include "tests/support/limits_posix.h"
#include "tests/support/privileges_posix.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

namespace fs = std::filesystem;
using TESTING::limit_guard;

/// Runs a script with its output in "file".
auto run(const std::string& script) {
    return run_program("/bin/sh", {"-c", script}, "file");
}

class processes : public TESTING::scratch_test {
  protected:
    /// Runs something that takes a while before it prints.
    static void run_long(const std::string& first = ":") {
        run(first + R"(
            i=0
            while [ $i -lt 30000 ]; do i=$((i + 1)); done
            echo end)");
    }
};

TEST_F(processes, print_into_the_file) {
    TESTING::write_file("file", "an earlier and longer text");
    EXPECT_EQ(run_program("/bin/echo", {"a  b"}, "file"), std::nullopt);
    EXPECT_EQ(TESTING::read_file("file"), "a  b\n");
}

TEST_F(processes, are_waited_for) {
    run_long();
    EXPECT_EQ(TESTING::read_file("file"), "end\n");
}

TEST_F(processes, get_arguments_and_files_of_any_name_as_they_stand) {
    const std::string name = "-a\"; touch INJECTED; \"`touch INJECTED`$(touch INJECTED)\\%s\n'";
    fs::create_directory(name);
    const fs::path program = fs::path(name) / name;
    fs::create_symlink("/bin/printf", program);
    const fs::path output = fs::path(name) / "-\" > INJECTED";
    EXPECT_EQ(run_program(program, {"%s", name}, output), std::nullopt);
    EXPECT_EQ(TESTING::read_file(output), name);
    EXPECT_EQ(run_program("/bin/printf", {"%s|", "", " "}, output), std::nullopt);
    EXPECT_EQ(TESTING::read_file(output), "| |");
    EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{name});
}

TEST_F(processes, do_not_tell_their_exit_status) {
    EXPECT_EQ(run("exit 3"), std::nullopt);
}

TEST_F(processes, that_are_no_programs_leave_an_empty_file) {
    TESTING::write_file("text", "no program");
    TESTING::write_file("data", "no program");
    fs::permissions("data", fs::perms::owner_all);
    for (const char* program :
         {"missing", "missing/program", "text", "text/program", ".", "data", ""}) {
        TESTING::write_file("file", "an earlier text");
        EXPECT_EQ(run_program(program, {}, "file"), std::nullopt) << program;
        EXPECT_EQ(TESTING::read_file("file"), "") << program;
    }
}

TEST_F(processes, are_not_searched_for_along_the_path) {
    EXPECT_EQ(run_program("echo", {"text"}, "file"), std::nullopt);
    EXPECT_EQ(TESTING::read_file("file"), "");
}

TEST_F(processes, are_not_run_without_a_file_for_their_output) {
    fs::create_directory("folder");
    for (const char* output : {"folder", "missing/file", ""}) {
        EXPECT_EQ(run_program("/bin/touch", {"ran"}, output), std::nullopt) << output;
    }
    EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{"folder"});
}

TEST_F(processes, run_when_no_descriptor_is_left) {
    std::vector<int> taken;
    const limit_guard limit(RLIMIT_NOFILE, 100);
    for (int last = 0; last != -1;) {
        last = ::dup(STDERR_FILENO);
        taken.push_back(last);
    }
    run("echo text");
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
    EXPECT_EQ(TESTING::read_file("file"), "text\n");
}

TEST_F(processes, run_in_a_working_directory_that_is_gone) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(scratch() / "gone");
    EXPECT_EQ(run_program("/bin/echo", {"text"}, scratch() / "file"), std::nullopt);
    EXPECT_EQ(run_program("/bin/touch", {scratch() / "ran"}, "file"), std::nullopt);
    fs::current_path(scratch());
    EXPECT_EQ(TESTING::read_file("file"), "text\n");
    EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{"file"});
}

TEST_F(processes, that_can_not_be_created_give_the_error_number) {
    EXPECT_EQ(run_program("/bin/true", {std::string(1'000'000, 'x')}, "file"), E2BIG);
    fs::permissions(".", fs::perms::all);
    const limit_guard limit(RLIMIT_NPROC, 0);
    const TESTING::ordinary_user user;
    EXPECT_EQ(run_program("/bin/true", {}, "another file"), EAGAIN);
    EXPECT_EQ(run_program("missing", {}, "another file"), EAGAIN);
    EXPECT_EQ(run_program("/bin/true", {}, "missing/file"), EAGAIN);
}

TEST_F(processes, get_no_standard_stream_of_the_host) {
    run("readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2");
    EXPECT_EQ(TESTING::read_file("file"),
              "/dev/null\n" + (scratch() / "file").string() + "\n/dev/null\n");
}

TEST_F(processes, print_into_the_file_when_the_host_has_no_standard_streams) {
    for (const int first : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        TESTING::in_child([&] {
            for (int stream = first; stream <= STDERR_FILENO; ++stream) {
                ::close(stream);
            }
            run("readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2; ls /proc/self/fd");
        });
        EXPECT_EQ(TESTING::read_file("file"),
                  "/dev/null\n" + (scratch() / "file").string() + "\n/dev/null\n0\n1\n2\n3\n");
    }
}

TEST_F(processes, get_no_other_descriptor_of_the_host) {
    const int inheritable = ::open("/dev/null", O_RDONLY);
    ASSERT_GE(inheritable, 0);
    const int high = ::fcntl(inheritable, F_DUPFD, 200);
    ASSERT_GE(high, 200);
    run("ls /proc/self/fd");
    ::close(high);
    ::close(inheritable);
    // 3 is the folder that ls reads.
    EXPECT_EQ(TESTING::read_file("file"), "0\n1\n2\n3\n");
}

TEST_F(processes, begin_with_no_signal_blocked) {
    sigset_t blocked;
    sigset_t former;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &former);
    // A shell clears what it was given.
    run_program("/bin/grep", {"SigBlk", "/proc/self/status"}, "file");
    sigprocmask(SIG_SETMASK, &former, nullptr);
    EXPECT_EQ(TESTING::read_file("file"), "SigBlk:\t0000000000000000\n");
}

TEST_F(processes, get_the_hosts_environment) {
    const TESTING::environment_guard guard("KIVRA_PROBE");
    TESTING::set_environment("KIVRA_PROBE", "a value");
    run_program("/usr/bin/env", {}, "file");
    EXPECT_THAT(TESTING::read_file("file"), testing::HasSubstr("KIVRA_PROBE=a value\n"));
}

TEST_F(processes, stand_in_a_process_group_of_their_own) {
    run("cut -d' ' -f5 /proc/self/stat");
    EXPECT_NE(std::stoi(TESTING::read_file("file")), ::getpgrp());
}

TEST_F(processes, are_waited_for_by_a_host_that_ignores_their_end) {
    const auto former = ::signal(SIGCHLD, SIG_IGN);
    run_long();
    static_cast<void>(::signal(SIGCHLD, former));
    EXPECT_EQ(TESTING::read_file("file"), "end\n");
}

TEST_F(processes, do_not_ignore_signals_that_the_host_ignores) {
    for (const int signal : {SIGPIPE, SIGCHLD}) {
        const auto former = ::signal(signal, SIG_IGN);
        run_program("/bin/grep", {"SigIgn", "/proc/self/status"}, "file");
        static_cast<void>(::signal(signal, former));
        const auto ignored = std::stoull(TESTING::read_file("file").substr(8), nullptr, 16);
        EXPECT_EQ(ignored & (1ULL << (signal - 1)), 0U) << signal;
    }
}

TEST_F(processes, are_waited_for_through_interruptions) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction former {};
    sigaction(SIGUSR1, &action, &former);
    run_long("kill -USR1 " + std::to_string(::getpid()));
    sigaction(SIGUSR1, &former, nullptr);
    EXPECT_EQ(TESTING::read_file("file"), "end\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
