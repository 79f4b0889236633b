// What a session's tshark meets on POSIX: descriptors, signals and limits.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/abi/sessions.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/limits_posix.h"
#include "tests/support/privileges_posix.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using TESTING::host;
using testing::IsEmpty;
using TESTING::session_ended;
using testing::SizeIs;

class sessions_on_posix : public TESTING::sessions {};

// Below Wine, a program's console keeps its output open for as long as it runs.
TEST_F(sessions_on_posix, that_close_their_output_and_go_on_cost_nothing) {
    session_runs("exec >&-; exec cat >/dev/null");
    expect_result({session_ended});
    EXPECT_THAT(TESTING::children(), IsEmpty());
}

TEST_F(sessions_on_posix, end_when_the_host_is_killed) {
    // Whoever holds the writing end of this pipe is still there: the child, and its tshark.
    ASSERT_EQ(mkfifo("alive", 0600), 0);
    const int reader = open("alive", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    const auto alive = fs::absolute("alive").string();
    session_runs("exec 9>\"" + alive + "\"; exec /usr/bin/tshark \"$@\"");

    int ready[2];
    ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        host own;
        init(own, "on");
        send_request(own);
        static_cast<void>(write(ready[1], "x", 1));
        pause();
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    // The end of the pipe is the end of tshark.
    pollfd end{reader, POLLIN, 0};
    ASSERT_EQ(poll(&end, 1, 60'000), 1);
    EXPECT_EQ(read(reader, &byte, 1), 0);
    close(reader);
    close(ready[0]);
    close(ready[1]);
    fs::remove("alive");
    EXPECT_THAT(working_files(), IsEmpty());
}

TEST_F(sessions_on_posix, leave_no_descriptor_and_no_child) {
    const auto descriptors = [] { return TESTING::names_in("/proc/self/fd").size(); };
    const auto before = descriptors();
    expect_result();
    host_.release();
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(sessions_on_posix, that_are_killed_in_the_middle_of_a_packet_cost_nothing) {
    session_runs("/usr/bin/tshark \"$@\" | { dd bs=1 count=200 2>/dev/null; kill -9 0; }");
    expect_result({session_ended});
    expect_result({session_ended});
    EXPECT_THAT(started(), ElementsAre("session", "single", "session", "single"));
}

TEST_F(sessions_on_posix, that_never_read_end_with_the_next_record_or_the_release) {
    session_runs("exec >&-; exec tail -f /dev/null");
    expect_result({session_ended});
    EXPECT_THAT(TESTING::children(), IsEmpty());
}

TEST_F(sessions_on_posix, log_a_process_that_can_not_be_created) {
    fs::permissions(".", fs::perms::all);
    {
        const TESTING::limit_guard no_process(RLIMIT_NPROC, 0);
        const TESTING::ordinary_user user;
        EXPECT_EQ(host_.data("nas-eps", ""), 0);
    }
    ASSERT_THAT(host_.logs, SizeIs(1));
    EXPECT_EQ(host_.logs.front().level, 5U);
    EXPECT_EQ(host_.logs.front().message,
              "invoking tshark failed with error: " + std::to_string(EAGAIN));
    EXPECT_THAT(working_files(), IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK
