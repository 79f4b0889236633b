#include "replay/trace/profile_file.h"

#include <chrono>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

class profile_files : public scratch_test {
  protected:
    /// A file as an earlier run left it.
    static void write_older_file(const fs::path& file) {
        write_file(file, "{}");
        fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
};

TEST_F(profile_files, are_written_when_they_appear) {
    const profile_file profile("profile.json");
    EXPECT_FALSE(profile.written());
    write_file("profile.json", "{}");
    EXPECT_TRUE(profile.written());
}

TEST_F(profile_files, are_written_when_an_older_one_changes) {
    write_older_file("profile.json");
    const profile_file profile("profile.json");
    EXPECT_FALSE(profile.written());
    write_file("profile.json", "{}");
    EXPECT_TRUE(profile.written());
}

TEST_F(profile_files, are_written_within_a_second_of_an_older_one) {
    write_older_file("profile.json");
    const auto second =
        std::chrono::floor<std::chrono::seconds>(fs::last_write_time("profile.json"));
    fs::last_write_time("profile.json", second);
    const profile_file profile("profile.json");
    fs::last_write_time("profile.json", second + std::chrono::milliseconds(1));
    EXPECT_TRUE(profile.written());
}

TEST_F(profile_files, are_not_written_when_they_are_no_files) {
    const profile_file profile("profile.json");
    fs::create_directory("profile.json");
    EXPECT_FALSE(profile.written());
}

TEST_F(profile_files, meet_no_obstacle_in_a_folder_that_can_be_written) {
    EXPECT_EQ(profile_file("profile.json").obstacle(), std::nullopt);
    write_file("profile.json", "{}");
    EXPECT_EQ(profile_file("profile.json").obstacle(), std::nullopt);
    EXPECT_EQ(profile_file(scratch() / "other.json").obstacle(), std::nullopt);
}

TEST_F(profile_files, can_not_be_written_into_a_missing_folder) {
    EXPECT_EQ(profile_file("missing/profile.json").obstacle(), "No such file or directory");
}

TEST_F(profile_files, can_not_be_written_below_a_file) {
    write_file("file", "");
    EXPECT_EQ(profile_file("file/profile.json").obstacle(), "Not a directory");
}

TEST_F(profile_files, can_not_be_written_over_a_folder) {
    fs::create_directory("profile.json");
    EXPECT_EQ(profile_file("profile.json").obstacle(), "Is a directory");
}

TEST_F(profile_files, can_not_be_written_to_what_is_no_regular_file) {
    EXPECT_EQ(profile_file("/dev/null").obstacle(), "not a regular file");
}

TEST_F(profile_files, tell_their_members) {
    write_file("profile.json", R"({"voltage": 3.7, "idrx_int": "2.56", "idrx_nb_sync": ""})");
    EXPECT_THAT(profile_file("profile.json").read(),
                ElementsAre(FieldsAre("idrx_int", "2.56"), FieldsAre("idrx_nb_sync", ""),
                            FieldsAre("voltage", "3.7")));
}

TEST_F(profile_files, that_hold_no_profile_can_not_be_read) {
    write_file("profile.json", "{\"psm\": ");
    EXPECT_THAT([] { profile_file("profile.json").read(); },
                ThrowsMessage<std::runtime_error>(HasSubstr("can't read profile.json: ")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
