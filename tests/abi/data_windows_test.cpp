#include <windows.h>

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using TESTING::host;
using testing::IsEmpty;

class data_on_windows : public TESTING::scratch_test {
  protected:
    /// Makes a folder, with the fake tshark in a folder "tools" of its own, and goes there.
    void enter(const fs::path& name) {
        directory_ = scratch() / name;
        fs::create_directories(directory_ / "tools");
        fs::copy_file(TESTING::fake_tshark_directory() / "tshark.exe",
                      directory_ / "tools" / "tshark.exe");
        fs::current_path(directory_);
        TESTING::fake_tshark_prints(R"([{"_source": {"layers": {"lte_rrc": {
            "lte-rrc.defaultPagingCycle": "2", "lte-rrc.mpdcch_NumRepetition_Paging_r13": "4"}}}}])");
        ASSERT_EQ(host_.init({{"tshark_directory", TESTING::narrow_text(directory_ / "tools")},
                              {"file_path", TESTING::narrow_text(directory_ / "profile.json")}}),
                  0);
    }

    fs::path directory_;
    host host_;
};

TEST_F(data_on_windows, logs_an_interpreter_that_cannot_be_started_and_succeeds) {
    // No command line may have more than 32767 characters.
    std::string directory = TESTING::fake_tshark_directory().string();
    while (directory.size() < 32'700) {
        directory += "\\.";
    }
    ASSERT_EQ(host_.init({{"tshark_directory", directory}, {"file_path", "profile.json"}}), 0);
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    ASSERT_EQ(host_.logs.size(), 1U);
    EXPECT_EQ(host_.logs.front().level, 5U);
    EXPECT_EQ(host_.logs.front().message, "invoking tshark failed with error: 87");
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(data_on_windows, deletes_an_output_that_is_read_only) {
    TESTING::fake_tshark_prints("[]");
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_log = [] {
        for (const auto& name : TESTING::names_in(".")) {
            if (name.starts_with("tshark")) {
                EXPECT_TRUE(SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_READONLY));
            }
        }
    };
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.logs.size(), 1U);
    EXPECT_THAT(TESTING::names_in("."),
                testing::ElementsAre("fake_tshark.output", "fake_tshark.sh"));
}

TEST_F(data_on_windows, works_in_folders_with_what_cmd_takes_for_operators) {
    for (const char* name :
         {"a  b", "a&b", "(a)", "a & (b)", "a^b", "a;b,c=d", "a'b`c$d!e@f#g~h"}) {
        host_.logs.clear();
        enter(name);
        EXPECT_EQ(host_.data("lte_rrc", ""), 0) << name << ": " << host_.last_error().first;
        EXPECT_EQ(host_.logs.size(), 1U) << name;
        EXPECT_EQ(TESTING::read_file("profile.json"),
                  TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
        host_.release();
        fs::current_path(scratch());
    }
}

TEST_F(data_on_windows, finds_no_output_in_a_folder_that_the_code_page_carries_differently) {
    // The command line is UTF-8, but the system reads it in code page 1252.
    enter(L"\u00E4");
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.last_error().first, "cannot open file");
    EXPECT_THAT(TESTING::names_in("."),
                testing::ElementsAre("fake_tshark.output", "fake_tshark.sh", "tools"));
}

TEST_F(data_on_windows, writes_the_profile_to_a_file_with_a_name_of_the_code_page) {
    enter("plain");
    host_.release();
    const fs::path file = directory_ / L"\u00E4\u20AC.json";
    ASSERT_EQ(host_.init({{"tshark_directory", TESTING::narrow_text(directory_ / "tools")},
                          {"file_path", TESTING::narrow_text(file)}}),
              0);
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    EXPECT_EQ(TESTING::read_file(file),
              TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

}  // namespace
}  // namespace KIVRA::TSHARK
