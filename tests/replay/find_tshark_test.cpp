#include "replay/find_tshark.h"

#include <filesystem>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::AllOf;
using testing::HasSubstr;
using testing::ThrowsMessage;

class locations : public scratch_test {
  protected:
    fs::path folder(const char* name) const {
        fs::create_directories(scratch() / name);
        return scratch() / name;
    }

    fs::path folder_with_program(const char* name, const char* program) const {
        auto directory = folder(name);
        write_file(directory / program, "#!/bin/sh\n");
        fs::permissions(directory / program, fs::perms::owner_all);
        return directory;
    }

    static std::string joined(const std::vector<fs::path>& folders) {
        std::string text;
        for (const auto& entry : folders) {
            text.append(entry.string()).append(1, ':');
        }
        return text;
    }
};

TEST_F(locations, tshark_lies_in_the_first_folder_that_holds_it) {
    const auto path = joined({folder("none"), folder_with_program("first", "tshark"),
                              folder_with_program("second", "tshark")});
    EXPECT_EQ(find_tshark_directory(path), scratch() / "first");
}

TEST_F(locations, tshark_may_have_its_windows_name) {
    EXPECT_EQ(find_tshark_directory(folder_with_program("wine", "tshark.exe").string()),
              scratch() / "wine");
}

TEST_F(locations, empty_and_missing_folders_are_passed_over) {
    folder_with_program(".", "tshark");
    const auto path = joined({"", "", scratch() / "missing", folder_with_program("bin", "tshark")});
    EXPECT_EQ(find_tshark_directory(path), scratch() / "bin");
}

TEST_F(locations, what_can_not_be_run_is_no_tshark) {
    write_file(folder("text") / "tshark", "");
    folder("folder/tshark");
    folder_with_program("other", "tshark2");
    const auto path = joined({scratch() / "text", scratch() / "folder", scratch() / "other",
                              folder_with_program("program", "tshark")});
    EXPECT_EQ(find_tshark_directory(path), scratch() / "program");
}

TEST_F(locations, a_tshark_that_lies_nowhere_is_told) {
    for (const std::string& path : {std::string(), std::string(":"), folder("none").string()}) {
        EXPECT_THAT([&] { find_tshark_directory(path); },
                    ThrowsMessage<std::runtime_error>(
                        "no tshark on PATH; name its folder with --tshark-directory"));
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
