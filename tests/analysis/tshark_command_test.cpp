#include "analysis/tshark_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using testing::ElementsAre;

TEST(tshark_arguments, ask_for_nas_and_rrc_packets_of_the_capture_as_json) {
    EXPECT_THAT(tshark_arguments("P"),
                ElementsAre("-Y", "nas-eps||lte_rrc", "-r", "P", "-T", "json"));
}

TEST(tshark_arguments, leave_the_path_as_it_is) {
    const char* path = R"(a b/$x`y`"z"&(1) %q%)";
    EXPECT_EQ(tshark_arguments(path)[3], path);
}

TEST(tshark_arguments, are_utf8) {
    EXPECT_EQ(tshark_arguments(u8"\u00E4")[3], "\xC3\xA4");
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
