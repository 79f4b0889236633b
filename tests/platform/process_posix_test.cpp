#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

class processes : public TESTING::scratch_test {
  protected:
    /// Runs something that takes a while and notes its end in a file.
    static void run_long(const std::string& first = ":") {
        TESTING::write_file("long.sh", first + R"(
            i=0
            while [ $i -lt 30000 ]; do i=$((i + 1)); done
            echo end > file)");
        run_command_line("cmd /c \"sh long.sh\"");
    }
};

/// Runs a script behind the quotes of cmd.
auto run(const std::string& script) {
    return run_command_line("cmd /c \"" + script + "\"");
}

TEST_F(processes, run_what_stands_between_the_outer_quotes) {
    EXPECT_EQ(run("echo \"a  b\" > \"c d\""), std::nullopt);
    EXPECT_EQ(TESTING::read_file("c d"), "a  b\n");
}

TEST_F(processes, are_waited_for) {
    run_long();
    EXPECT_EQ(TESTING::read_file("file"), "end\n");
}

TEST_F(processes, get_what_sh_would_expand_as_it_stands) {
    run(R"(printf %s "$HOME `id` \n" > "$x`y`\z")");
    EXPECT_EQ(TESTING::read_file("$x`y`\\z"), "$HOME `id` \\n");
}

TEST_F(processes, do_not_tell_their_exit_status) {
    EXPECT_EQ(run("exit 3"), std::nullopt);
}

TEST_F(processes, that_cannot_be_started_give_the_error_number) {
    EXPECT_EQ(run_command_line("cmd /c \"true\"", "no-such-interpreter"), ENOENT);
    EXPECT_EQ(run_command_line("cmd /c \"true\"", "."), EACCES);
}

TEST_F(processes, get_no_standard_stream_of_the_host) {
    TESTING::write_file("streams.sh", R"(
        streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)
        echo "$streams" > file)");
    run("sh streams.sh");
    EXPECT_EQ(TESTING::read_file("file"), "/dev/null\n/dev/null\n/dev/null\n");
}

TEST_F(processes, get_no_other_descriptor_of_the_host) {
    const int inheritable = ::open("/dev/null", O_RDONLY);
    ASSERT_GE(inheritable, 0);
    const int high = ::fcntl(inheritable, F_DUPFD, 200);
    ASSERT_GE(high, 200);
    run("ls /proc/self/fd > file");
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
    run("grep SigBlk /proc/self/status > file");
    sigprocmask(SIG_SETMASK, &former, nullptr);
    EXPECT_EQ(TESTING::read_file("file"), "SigBlk:\t0000000000000000\n");
}

TEST_F(processes, stand_in_a_process_group_of_their_own) {
    run("cut -d' ' -f5 /proc/self/stat > file");
    EXPECT_NE(std::stoi(TESTING::read_file("file")), ::getpgrp());
}

TEST_F(processes, are_waited_for_by_a_host_that_ignores_their_end) {
    const auto former = ::signal(SIGCHLD, SIG_IGN);
    run_long();
    static_cast<void>(::signal(SIGCHLD, former));
    EXPECT_EQ(TESTING::read_file("file"), "end\n");
}

TEST_F(processes, do_not_ignore_signals_that_the_host_ignores) {
    const auto former = ::signal(SIGPIPE, SIG_IGN);
    run("grep SigIgn /proc/self/status > file");
    static_cast<void>(::signal(SIGPIPE, former));
    const auto ignored = std::stoull(TESTING::read_file("file").substr(8), nullptr, 16);
    EXPECT_EQ(ignored & (1ULL << (SIGPIPE - 1)), 0U);
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
