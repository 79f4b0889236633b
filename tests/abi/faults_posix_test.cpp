#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/child_posix.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/limits_posix.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using TESTING::host;
using testing::IsEmpty;
using TESTING::limit_guard;
using testing::Matcher;

constexpr auto one_packet =
    R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "2",
                                            "lte-rrc.mpdcch_NumRepetition_Paging_r13": "4"}}}}])";

constexpr auto write_permission =
    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

/// A working directory, a disk or a tshark that fails. Result, last error and what is on the disk
/// afterwards are told for each.
class faults : public TESTING::scratch_test {
  protected:
    /// The working directory is "work"; tshark stands beside it, where any user reaches it.
    void SetUp() override {
        fs::permissions(".", fs::perms::all);
        fs::copy(TESTING::fake_tshark_directory(), "tools");
        fs::create_directory("work");
        fs::permissions("work", fs::perms::all);
        fs::current_path("work");
        ASSERT_EQ(init("profile.json"), 0);
        TESTING::fake_tshark_prints(one_packet);
    }
    void TearDown() override { fs::current_path(scratch()); }

    std::int32_t init(const std::string& parameter_file) {
        return host_.init(
            {{"tshark_directory", (scratch() / "tools").string()}, {"file_path", parameter_file}});
    }

    /// The files of the test, without those that the fake tshark needs.
    static std::vector<std::string> files() {
        auto names = TESTING::names_in(".");
        std::erase_if(names,
                      [](const std::string& name) { return name.starts_with("fake_tshark"); });
        return names;
    }

    void expect_failure(const Matcher<std::string>& reason) {
        EXPECT_EQ(host_.data("lte_rrc", ""), 100);
        EXPECT_THAT(host_.last_error().first, reason);
        EXPECT_EQ(host_.last_error().second, 100U);
        EXPECT_THAT(host_.logs, IsEmpty());
        EXPECT_THAT(host_.texts, IsEmpty());
    }

    /// The next record is analysed as if nothing had been.
    void expect_recovery() {
        host_.texts.clear();
        TESTING::fake_tshark_prints(one_packet);
        EXPECT_EQ(host_.data("lte_rrc", ""), 0);
        EXPECT_EQ(host_.document()["lte-rrc"]["idrx_int"], "1.28");
        EXPECT_EQ(TESTING::read_file("profile.json"),
                  TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
        EXPECT_THAT(files(), ElementsAre("profile.json"));
    }

    host host_;
};

// The working directory.

TEST_F(faults, of_a_working_directory_that_is_deleted_while_tshark_runs) {
    TESTING::fake_tshark_runs("cat fake_tshark.output; rm -r \"$PWD\"");
    expect_failure("cannot open file");
    EXPECT_THAT(TESTING::names_in(scratch()), ElementsAre("tools"));
}

TEST_F(faults, of_a_working_directory_that_takes_no_files) {
    fs::permissions(".", fs::perms::all & ~write_permission);
    {
        const TESTING::ordinary_user user;
        expect_failure("cannot open file");
    }
    EXPECT_THAT(files(), IsEmpty());
    fs::permissions(".", fs::perms::all);
    expect_recovery();
}

TEST_F(faults, of_a_working_directory_that_can_not_be_searched) {
    fs::permissions(".", fs::perms::none);
    {
        const TESTING::ordinary_user user;
        expect_failure(AnyOf(HasSubstr("exists"), HasSubstr("current_path()")));
    }
    fs::permissions(".", fs::perms::all);
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_a_full_disk) {
    TESTING::in_child([this] {
        // Root may mount at once, other users in a user namespace of their own.
        ASSERT_EQ(unshare(geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER), 0);
        // Nobody else is to see what is mounted here. After a chroot, where the root is no mount
        // point, that can't be asked for.
        const bool is_private = mount("none", "/", "", MS_REC | MS_PRIVATE, nullptr) == 0;
        ASSERT_TRUE(is_private || errno == EINVAL);
        const fs::path directory = fs::current_path();
        ASSERT_EQ(mount("full", directory.c_str(), "tmpfs", 0, "size=64k"), 0);
        fs::current_path(directory);
        TESTING::fake_tshark_prints(one_packet);
        std::ofstream filler("filler", std::ios::binary);
        filler << std::string(100'000, 'x') << std::flush;
        ASSERT_FALSE(filler.good());
        filler.close();

        expect_failure(HasSubstr("parse_error.101"));
        EXPECT_THAT(files(), ElementsAre("filler"));
        fs::remove("filler");
        expect_recovery();
        fs::current_path("/");
        EXPECT_EQ(umount2(directory.c_str(), MNT_DETACH), 0);
    });
}

// The limit on the size of files: a write beyond it raises a signal that ends a process.

TEST_F(faults, of_files_that_must_be_empty) {
    {
        const limit_guard limit(RLIMIT_FSIZE, 0);
        expect_failure(HasSubstr("parse_error.101"));
    }
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_an_output_that_outgrows_the_limit) {
    {
        const limit_guard limit(RLIMIT_FSIZE, 150);
        expect_failure(HasSubstr("parse_error.101"));
    }
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_a_parameter_file_that_outgrows_the_limit_are_not_told) {
    {
        const limit_guard limit(RLIMIT_FSIZE, 300);
        EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    }
    EXPECT_EQ(host_.last_error().first, "");
    EXPECT_EQ(fs::file_size("profile.json"), 300U);
    expect_recovery();
}

TEST_F(faults, of_the_size_limit_leave_the_hosts_handling_of_its_signal_alone) {
    TESTING::in_child([this] {
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGXFSZ);
        ASSERT_EQ(sigprocmask(SIG_BLOCK, &blocked, nullptr), 0);
        ASSERT_EQ(raise(SIGXFSZ), 0);
        EXPECT_EQ(host_.data("lte_rrc", ""), 0);
        sigset_t pending;
        ASSERT_EQ(sigpending(&pending), 0);
        EXPECT_EQ(sigismember(&pending, SIGXFSZ), 1);
    });
}

TEST_F(faults, of_a_device_without_room_for_the_parameter_file_are_not_told) {
    host_.release();
    ASSERT_EQ(init("/dev/full"), 0);
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    EXPECT_EQ(host_.last_error().first, "");
    EXPECT_EQ(host_.texts.size(), 1U);
    EXPECT_THAT(files(), IsEmpty());
}

// tshark and its output.

TEST_F(faults, of_a_tshark_that_is_killed_half_way) {
    TESTING::fake_tshark_runs("head -c 60 fake_tshark.output; kill -9 $$");
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_a_tshark_that_hangs_up_after_half_a_document) {
    TESTING::fake_tshark_runs("head -c 60 fake_tshark.output; exec >&-; cat fake_tshark.output");
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_a_tshark_that_is_missing_at_run_time) {
    fs::rename("../tools", "../elsewhere");
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
    fs::rename("../elsewhere", "../tools");
    expect_recovery();
}

TEST_F(faults, of_a_tshark_that_can_not_be_executed) {
    fs::permissions("../tools/tshark.exe", fs::perms::owner_read);
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(faults, of_a_tshark_that_writes_to_stderr_only) {
    TESTING::fake_tshark_runs("cat fake_tshark.output >&2");
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(faults, of_an_output_that_is_a_directory) {
    TESTING::fake_tshark_runs("output=$(ls tshark[0-9]*.json); rm $output; mkdir $output");
    expect_failure(HasSubstr("parse_error.101"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(faults, of_an_output_that_can_not_be_read) {
    TESTING::fake_tshark_runs("cat fake_tshark.output; chmod 000 tshark[0-9]*.json");
    {
        const TESTING::ordinary_user user;
        expect_failure("cannot open file");
    }
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(faults, of_an_output_that_was_made_a_link_to_nothing) {
    TESTING::fake_tshark_runs("output=$(ls tshark[0-9]*.json); ln -sf nowhere $output");
    expect_failure("cannot open file");
    EXPECT_THAT(files(), IsEmpty());
}

// The host.

/// What a signal does, changed for a while.
class signal_guard {
  public:
    signal_guard(int number, void (*handler)(int)) : number_(number) {
        struct sigaction changed {};
        changed.sa_handler = handler;
        EXPECT_EQ(sigaction(number_, &changed, &former_), 0);
    }
    ~signal_guard() { EXPECT_EQ(sigaction(number_, &former_, nullptr), 0); }
    signal_guard(const signal_guard&) = delete;
    signal_guard& operator=(const signal_guard&) = delete;

  private:
    int number_;
    struct sigaction former_ {};
};

void collect_children(int /*signal*/) {
    const int error = errno;
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    errno = error;
}

class careless_host : public faults {
  protected:
    void expect_no_children() {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }
};

TEST_F(careless_host, may_ignore_that_children_end) {
    const signal_guard ignored(SIGCHLD, SIG_IGN);
    expect_recovery();
    expect_no_children();
}

TEST_F(careless_host, may_collect_every_child) {
    const signal_guard collected(SIGCHLD, collect_children);
    expect_recovery();
    expect_no_children();
}

TEST_F(careless_host, leaves_no_child_behind) {
    expect_recovery();
    expect_no_children();
}

/// Descriptors without the flag that would keep them from children.
class open_descriptors {
  public:
    explicit open_descriptors(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            numbers_.push_back(open("/dev/null", O_RDONLY));
            EXPECT_NE(numbers_.back(), -1);
        }
    }
    ~open_descriptors() {
        for (const int number : numbers_) {
            close(number);
        }
    }
    open_descriptors(const open_descriptors&) = delete;
    open_descriptors& operator=(const open_descriptors&) = delete;

    int highest() const { return *std::ranges::max_element(numbers_); }

  private:
    std::vector<int> numbers_;
};

TEST_F(careless_host, may_have_1000_open_descriptors_of_which_tshark_gets_none) {
    TESTING::fake_tshark_runs("ls /proc/$$/fd > fake_tshark.descriptors; cat fake_tshark.output");
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    const std::string without = TESTING::read_file("fake_tshark.descriptors");

    const limit_guard limit(RLIMIT_NOFILE, 4'096);
    const open_descriptors descriptors(1'000);
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    EXPECT_EQ(TESTING::read_file("fake_tshark.descriptors"), without);
    expect_recovery();
}

TEST_F(careless_host, may_have_no_descriptor_left) {
    {
        const open_descriptors descriptors(20);
        const limit_guard limit(RLIMIT_NOFILE, static_cast<rlim_t>(descriptors.highest()) + 1);
        expect_failure("cannot open file");
    }
    EXPECT_THAT(files(), IsEmpty());
    expect_recovery();
}

TEST_F(careless_host, may_throw_when_told_that_tshark_can_not_be_started) {
    host_.on_log = [] { throw std::runtime_error("log is full"); };
    {
        const limit_guard limit(RLIMIT_NPROC, 0);
        const TESTING::ordinary_user user;
        EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    }
    EXPECT_EQ(host_.last_error().first, "log is full");
    ASSERT_EQ(host_.logs.size(), 1U);
    EXPECT_EQ(host_.logs.front().message,
              "invoking tshark failed with error: " + std::to_string(EAGAIN));
    EXPECT_THAT(files(), IsEmpty());
    host_.on_log = nullptr;
    expect_recovery();
}

TEST_F(careless_host, may_have_closed_its_standard_streams) {
    TESTING::in_child([this] {
        const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            close(stream);
        }
        EXPECT_EQ(host_.data("lte_rrc", ""), 0);
        dup2(output, STDOUT_FILENO);
        EXPECT_EQ(host_.texts.size(), 1U);
        EXPECT_THAT(files(), ElementsAre("profile.json"));
    });
}

TEST_F(careless_host, may_fork_and_go_on_with_the_context_in_either_process) {
    expect_recovery();
    TESTING::in_child([this] {
        expect_recovery();
        EXPECT_EQ(host_.release(), 0);
    });
    expect_recovery();
    EXPECT_EQ(host_.release(), 0);
    EXPECT_THAT(files(), ElementsAre("profile.json"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
