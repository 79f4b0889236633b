// The built plug-in with the real tshark, in folders whose names mean something to a shell.
#include <algorithm>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using TESTING::host;

class folder_names : public TESTING::scratch_test, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        fs::create_directory(GetParam());
        fs::current_path(GetParam());
        fs::create_directory(GetParam());
        fs::create_symlink(TESTING::tshark_directory() / "tshark",
                           fs::path(GetParam()) / "tshark.exe");
    }
    void TearDown() override { fs::current_path(scratch()); }

    /// Analyses a record, with a tshark of its own or with a session.
    static void expect_result(const fs::path& tshark, const char* session) {
        const json record = TESTING::read_json(TESTING::data_file("nbiot_attach.json")).front();
        json profile = TESTING::read_json(TESTING::data_file("profile_of_defaults.json"));
        profile.update({{"idrx_int", "0.64"}, {"idrx_reps", "64"}});
        host host;
        ASSERT_EQ(host.init({{"tshark_directory", tshark.string()},
                             {"file_path", "profile.json"},
                             {"tshark_session", session}}),
                  0);
        EXPECT_EQ(host.data(record["format"], TESTING::bytes_of(record["hex"].get<std::string>())),
                  0)
            << host.last_error().first;
        EXPECT_EQ(host.document(), record["result"]);
        EXPECT_EQ(TESTING::read_file("profile.json"), profile.dump(4));
        fs::remove("profile.json");
        EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{GetParam()});
    }

    bool is_injected() const {
        const fs::recursive_directory_iterator all(scratch());
        return std::ranges::any_of(
            all, [](const auto& entry) { return entry.path().filename() == "INJECTED"; });
    }
};

TEST_P(folder_names, mean_nothing) {
    // As a relative folder, too: its name begins the program's path then.
    for (const fs::path& tshark : {scratch() / GetParam() / GetParam(), fs::path(GetParam())}) {
        expect_result(tshark, "off");
        expect_result(tshark, "on");
    }
    EXPECT_FALSE(is_injected());
}

INSTANTIATE_TEST_SUITE_P(all, folder_names,
                         testing::Values("a\"; touch INJECTED; \"b", "$(touch INJECTED)",
                                         "`touch INJECTED`", "a\\\"; touch INJECTED; \\", "%PATH%",
                                         "a\ntouch INJECTED\n", "-touch", "'; touch INJECTED #",
                                         "a&touch INJECTED", "a>INJECTED", "*", "~", "\xFF"));

}  // namespace
}  // namespace KIVRA::TSHARK
