// The plug-in in a host whose ANSI code page is UTF-8: names of every alphabet work.
#include <windows.h>

#include <filesystem>
#include <string>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "sink/tshark_discovery.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using TESTING::host;

class utf8_host : public TESTING::scratch_test {
  protected:
    void SetUp() override { ASSERT_EQ(GetACP(), 65001U); }

    host host_;

  private:
    TESTING::environment_guard path_{"PATH"};
};

TEST_F(utf8_host, gives_paths_in_utf8) {
    EXPECT_EQ(PLATFORM::path_from_narrow("\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80").native(),
              L"\u00E4\u4E2D\U0001F600");
}

TEST_F(utf8_host, cannot_give_a_path_that_is_no_utf8) {
    try {
        PLATFORM::path_from_narrow("a\xFFz");
        FAIL() << "no error";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ERROR_NO_UNICODE_TRANSLATION);
    }
    EXPECT_EQ(host_.init({{"file_path", "a\xFFz"}}), 1);
    EXPECT_EQ(host_.init_errors.size(), 1U);
}

TEST_F(utf8_host, does_not_mind_a_folder_of_path_that_is_no_utf8_behind_the_one_that_is_found) {
    fs::create_directories("tools/Wireshark");
    TESTING::write_file("tools/Wireshark/tshark.exe", "");
    EXPECT_EQ(SINK::discover_tshark_directory("tools;a\xFFz"), fs::path("tools") / "Wireshark");
    EXPECT_THROW(SINK::discover_tshark_directory("a\xFFz;tools"), std::system_error);
}

TEST_F(utf8_host, works_in_folders_with_names_of_every_alphabet) {
    const fs::path directory = scratch() / L"\u00E4 \u4E2D & \u0416";
    fs::create_directories(directory / "tools" / "Wireshark");
    fs::copy_file(TESTING::fake_tshark_directory() / "tshark.exe",
                  directory / "tools" / "Wireshark" / "tshark.exe");
    fs::current_path(directory);
    TESTING::fake_tshark_prints(R"([{"_source": {"layers": {"lte_rrc": {
        "lte-rrc.defaultPagingCycle": "2", "lte-rrc.mpdcch_NumRepetition_Paging_r13": "4"}}}}])");
    TESTING::set_environment("PATH", TESTING::narrow_text(directory / "tools"));
    const fs::path profile = directory / L"\u03C0.json";
    ASSERT_EQ(host_.init({{"file_path", TESTING::narrow_text(profile)}}), 0);
    EXPECT_EQ(host_.data("lte_rrc", ""), 0) << host_.last_error().first;
    EXPECT_EQ(TESTING::read_file(profile),
              TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

}  // namespace
}  // namespace KIVRA::TSHARK
