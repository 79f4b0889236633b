#include "replay/tshark_version.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::StartsWith;

class version_of_tshark : public TESTING::scratch_test {
  protected:
    /// Of a shell script in tshark's place.
    static std::string version_of(const char* script) {
        TESTING::write_file("tshark", script);
        std::filesystem::permissions("tshark", std::filesystem::perms::owner_all);
        return tshark_version(std::filesystem::absolute("tshark"));
    }
};

TEST_F(version_of_tshark, is_the_first_line_that_it_prints) {
    EXPECT_THAT(tshark_version("/usr/bin/tshark"), StartsWith("TShark (Wireshark) "));
    EXPECT_EQ(version_of("#!/bin/sh\nprintf 'TShark 9\\r\\nmore\\n'\n"), "TShark 9");
}

TEST_F(version_of_tshark, may_end_without_a_line_feed) {
    EXPECT_EQ(version_of("#!/bin/sh\nprintf 'TShark 9'\n"), "TShark 9");
}

TEST_F(version_of_tshark, is_empty_where_there_is_none) {
    EXPECT_EQ(tshark_version("/missing/tshark"), "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
