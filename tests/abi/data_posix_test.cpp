
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/deep_directory_posix.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/limits_posix.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using TESTING::host;
using testing::IsEmpty;

class data_on_posix : public TESTING::scratch_test {
  protected:
    host host_;
};

TEST_F(data_on_posix, logs_a_process_that_cannot_be_created_and_succeeds) {
    ASSERT_EQ(host_.init_with_fake_tshark("profile.json"), 0);
    {
        const TESTING::limit_guard no_process(RLIMIT_NPROC, 0);
        const TESTING::ordinary_user user;
        EXPECT_EQ(host_.data("nas-eps", ""), 0);
    }
    ASSERT_EQ(host_.logs.size(), 1U);
    EXPECT_EQ(host_.logs.front().level, 5U);
    EXPECT_EQ(host_.logs.front().message,
              "invoking tshark failed with error: " + std::to_string(EAGAIN));
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(data_on_posix, fails_where_the_working_directory_is_gone) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(scratch() / "gone");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, HasSubstr("current_path()"));
    EXPECT_THAT(host_.logs, IsEmpty());
}

TEST_F(data_on_posix, fails_where_a_name_for_the_capture_cannot_be_queried) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    TESTING::enter_deep_directory();
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, HasSubstr("exists"));
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(data_on_posix, works_in_folders_of_any_name) {
    for (const std::string name :
         {"a b&(c);$HOME`id`\\n'%PATH%\xC3\xA4*", "a\"; touch INJECTED; \"b", "-a\"b\n\xFF"}) {
        fs::create_directory(name);
        fs::copy(TESTING::fake_tshark_directory(), fs::path(name) / "tools");
        fs::current_path(name);
        TESTING::fake_tshark_prints("[]");
        ASSERT_EQ(host_.init({{"tshark_directory", (scratch() / name / "tools").string()}}), 0);
        EXPECT_EQ(host_.data("nas-eps", ""), 0) << name;
        EXPECT_EQ(host_.last_error().first, "") << name;
        EXPECT_THAT(TESTING::names_in("."),
                    testing::ElementsAre("fake_tshark.output", "fake_tshark.sh", "tools"));
        host_.release();
        fs::current_path(scratch());
    }
}

TEST_F(data_on_posix, has_no_text_of_tshark_when_tshark_is_no_program) {
    fs::create_directory("tools");
    TESTING::write_file("tools/tshark.exe", "[]");
    fs::permissions("tools/tshark.exe", fs::perms::owner_all);
    ASSERT_EQ(host_.init({{"tshark_directory", "tools"}}), 0);
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, HasSubstr("parse_error.101"));
    EXPECT_THAT(host_.logs, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK
