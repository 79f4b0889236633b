#include <gtest/gtest.h>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

TEST(narrow_text, becomes_a_path) {
    EXPECT_EQ(path_from_narrow("folder/file name.json"), "folder/file name.json");
    EXPECT_TRUE(path_from_narrow("").empty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
