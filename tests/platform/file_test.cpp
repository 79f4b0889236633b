#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

class files : public TESTING::scratch_test {};

TEST_F(files, hold_what_was_written_byte_for_byte) {
    const std::string content("a\r\n\n\0b", 6);
    write_file("file", content);
    EXPECT_EQ(TESTING::read_file("file"), content);
}

TEST_F(files, are_overwritten_whole) {
    write_file("file", "a longer text");
    write_file("file", "short");
    EXPECT_EQ(TESTING::read_file("file"), "short");
}

TEST_F(files, stay_the_same_when_overwritten) {
    write_file("file", "a longer text");
    std::filesystem::create_hard_link("file", "other name");
    write_file("file", "short");
    EXPECT_EQ(TESTING::read_file("other name"), "short");
}

TEST_F(files, that_cannot_be_written_are_not_told) {
    std::filesystem::create_directory("folder");
    write_file("folder", "content");
    write_file("missing/file", "content");
    EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{"folder"});
    EXPECT_TRUE(std::filesystem::is_empty("folder"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
