// One tshark for all records, as a host asks for it: when it starts and ends, and what becomes of
// the records when it fails. What the records give stands in tests/tshark.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using TESTING::host;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto session_ended = "tshark session ended, record is dissected by a tshark of its own";

/// Runs tshark for one record as always, and this script for a session.
std::string with_session(const std::string& script) {
    return "#!/bin/sh\n"
           "echo $$ >> \"${0%/*}/started\"\n"
           "case \"$*\" in\n"
           "*' -r - '*) " +
           script +
           " ;;\n"
           "*) exec /usr/bin/tshark \"$@\" ;;\n"
           "esac\n";
}

constexpr auto sound_session = "exec /usr/bin/tshark \"$@\"";

class sessions : public TESTING::scratch_test {
  protected:
    void SetUp() override {
        fs::permissions(".", fs::perms::all);
        fs::create_directory("tools");
        fs::create_directory("work");
        fs::current_path("work");
        replace_session(sound_session);
        ASSERT_EQ(init("on"), 0);
    }
    void TearDown() override { fs::current_path(scratch()); }

    /// What a session runs from now on; one that runs already goes on.
    void replace_session(const std::string& script) {
        const auto tshark = scratch() / "tools/tshark";
        TESTING::write_file("new", with_session(script));
        fs::permissions("new", fs::perms::all);
        fs::rename("new", tshark);
    }

    std::int32_t init(const std::string& session) {
        return host_.init(
            {{"tshark_directory", (scratch() / "tools").string()}, {"tshark_session", session}});
    }

    /// The processes that have been started, one a line.
    std::vector<pid_t> started() const {
        std::vector<pid_t> processes;
        const auto file = scratch() / "tools/started";
        std::istringstream lines(fs::exists(file) ? TESTING::read_file(file) : "");
        for (pid_t process = 0; lines >> process;) {
            processes.push_back(process);
        }
        return processes;
    }

    static bool runs(pid_t process) { return kill(process, 0) == 0; }

    /// Sends an RRC connection request and expects its document.
    void expect_result(const std::vector<std::string>& messages = {}) {
        host_.texts.clear();
        host_.logs.clear();
        ASSERT_EQ(host_.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6")), 0)
            << host_.last_error().first;
        EXPECT_EQ(host_.document()["lte-rrc"]["connection_state"], "rrcConnectionRequest");
        EXPECT_EQ(host_.messages(), messages);
        EXPECT_THAT(host_.logs, SizeIs(messages.size() + 1));
        EXPECT_THAT(TESTING::names_in("."), IsEmpty());
    }

    host host_;
};

TEST_F(sessions, start_with_the_first_record_for_tshark_and_serve_all) {
    EXPECT_EQ(host_.data("ip", ""), 0);
    EXPECT_EQ(host_.data("other", ""), 0);
    EXPECT_THAT(started(), IsEmpty());
    expect_result();
    expect_result();
    EXPECT_THAT(started(), SizeIs(1));
}

TEST_F(sessions, are_used_for_the_value_on_alone) {
    for (const char* value : {"", "ON", "On", "on ", "1", "true", "yes", "off"}) {
        host_.release();
        ASSERT_EQ(init(value), 0);
        fs::remove(scratch() / "tools/started");
        expect_result();
        expect_result();
        EXPECT_THAT(started(), SizeIs(2)) << value;
    }
}

TEST_F(sessions, write_no_working_file) {
    std::vector<std::string> names{"not called"};
    host_.on_chunk = [&](const kivra_annotated_chunk&) { names = TESTING::names_in("."); };
    expect_result();
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(sessions, end_with_the_release) {
    expect_result();
    const auto processes = started();
    ASSERT_THAT(processes, SizeIs(1));
    EXPECT_TRUE(runs(processes[0]));
    EXPECT_EQ(host_.release(), 0);
    EXPECT_FALSE(runs(processes[0]));
}

TEST_F(sessions, outlive_a_callback_that_throws_but_not_the_release) {
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw std::runtime_error("host"); };
    EXPECT_EQ(host_.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6")), 100);
    EXPECT_EQ(host_.last_error().first, "host");
    host_.on_chunk = nullptr;
    expect_result();
    const auto processes = started();
    EXPECT_THAT(processes, SizeIs(1));
    host_.release();
    EXPECT_FALSE(runs(processes.at(0)));
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(sessions, end_when_the_host_is_killed) {
    // Whoever holds the writing end of this pipe is still there: the child, and its tshark.
    ASSERT_EQ(mkfifo("alive", 0600), 0);
    const int reader = open("alive", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    const auto alive = fs::absolute("alive").string();
    replace_session("exec 9>\"" + alive + "\"; exec /usr/bin/tshark \"$@\"");

    int ready[2];
    ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        host own;
        own.init({{"tshark_directory", (scratch() / "tools").string()}, {"tshark_session", "on"}});
        own.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6"));
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
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(sessions, leave_no_descriptor_and_no_child) {
    const auto descriptors = [] { return TESTING::names_in("/proc/self/fd").size(); };
    const auto before = descriptors();
    expect_result();
    host_.release();
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(sessions, start_anew_behind_a_tshark_that_was_killed_between_two_records) {
    expect_result();
    ASSERT_EQ(kill(started().at(0), SIGKILL), 0);
    expect_result({session_ended});
    expect_result();
    // Two sessions, and one for the record in between.
    EXPECT_THAT(started(), SizeIs(3));
}

TEST_F(sessions, log_their_end_as_information) {
    expect_result();
    ASSERT_EQ(kill(started().at(0), SIGKILL), 0);
    expect_result({session_ended});
    EXPECT_EQ(host_.logs.front().level, 3U);
}

TEST_F(sessions, that_are_killed_in_the_middle_of_a_packet_cost_nothing) {
    replace_session("/usr/bin/tshark \"$@\" | { dd bs=1 count=200 2>/dev/null; kill -9 0; }");
    expect_result({session_ended});
    expect_result({session_ended});
    EXPECT_THAT(started(), SizeIs(4));
}

TEST_F(sessions, that_write_rubbish_cost_nothing) {
    for (const char* rubbish :
         {"hello", "null", "[1]", "{}", "[{}]", "[[[", R"([{\"frame.number\": \"99\"}])",
          R"([{\"frame.number\": \"x\"}])", "\\0", "]"}) {
        host_.release();
        ASSERT_EQ(init("on"), 0);
        replace_session(std::string("printf '") + rubbish + "'; exec cat >/dev/null");
        expect_result({session_ended});
    }
}

TEST_F(sessions, that_end_at_once_cost_nothing) {
    for (const char* script : {"exit 0", "exit 1", "exec >&-; exec cat >/dev/null",
                               "exec >&-; exec tail -f /dev/null", "kill -9 $$"}) {
        host_.release();
        ASSERT_EQ(init("on"), 0);
        replace_session(script);
        expect_result({session_ended});
    }
}

TEST_F(sessions, that_never_read_end_with_the_next_record_or_the_release) {
    replace_session("exec >&-; exec tail -f /dev/null");
    expect_result({session_ended});
    for (const pid_t process : started()) {
        EXPECT_FALSE(runs(process));
    }
}

TEST_F(sessions, take_a_record_that_is_larger_than_a_pipe) {
    const std::string payload(250'000, '\x07');
    ASSERT_EQ(host_.data("nas-eps", payload), 0) << host_.last_error().first;
    EXPECT_THAT(host_.messages(), IsEmpty());
    const auto texts = host_.texts;
    expect_result();
    EXPECT_THAT(started(), SizeIs(1));

    host_.release();
    host_.texts.clear();
    ASSERT_EQ(init("off"), 0);
    ASSERT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_EQ(host_.texts, texts);
}

TEST_F(sessions, give_a_record_that_tshark_can_not_read_what_it_gets_alone) {
    // More than tshark takes for a packet.
    const std::string payload(10'000'000, '\x07');
    EXPECT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_THAT(host_.messages(), ElementsAre(session_ended));
    EXPECT_THAT(host_.texts, IsEmpty());
    expect_result();

    host_.release();
    host_.texts.clear();
    ASSERT_EQ(init("off"), 0);
    EXPECT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_THAT(host_.texts, IsEmpty());
}

TEST_F(sessions, give_records_a_tshark_of_their_own_where_there_is_no_program) {
    fs::remove(scratch() / "tools/tshark");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, testing::HasSubstr("parse_error.101"));
    EXPECT_THAT(host_.logs, IsEmpty());
    replace_session(sound_session);
    expect_result();
}

TEST_F(sessions, log_a_process_that_can_not_be_created) {
    fs::permissions(".", fs::perms::all);
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NPROC, &former), 0);
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NPROC, &none), 0);
    std::int32_t result = -1;
    {
        const TESTING::ordinary_user user;
        result = host_.data("nas-eps", "");
    }
    ASSERT_EQ(setrlimit(RLIMIT_NPROC, &former), 0);
    EXPECT_EQ(result, 0);
    ASSERT_THAT(host_.logs, SizeIs(1));
    EXPECT_EQ(host_.logs.front().level, 5U);
    EXPECT_EQ(host_.logs.front().message,
              "invoking tshark failed with error: " + std::to_string(EAGAIN));
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(sessions, of_two_contexts_do_not_touch_each_other) {
    host other;
    ASSERT_EQ(other.init(
                  {{"tshark_directory", (scratch() / "tools").string()}, {"tshark_session", "on"}}),
              0);
    expect_result();
    EXPECT_EQ(other.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6")), 0);
    const auto processes = started();
    ASSERT_THAT(processes, SizeIs(2));
    host_.release();
    EXPECT_FALSE(runs(processes[0]));
    EXPECT_TRUE(runs(processes[1]));
    other.texts.clear();
    EXPECT_EQ(other.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6")), 0);
    EXPECT_THAT(other.texts, SizeIs(1));
}

}  // namespace
}  // namespace KIVRA::TSHARK
