#include "analysis/tshark_command.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

TEST(tshark_command, quotes_every_path_and_the_whole) {
    EXPECT_EQ(tshark_command("T", "P", "J"),
              R"(cmd /c ""T" -Y "nas-eps||lte_rrc" -r "P" -T json > "J"")");
}

TEST(tshark_command, leaves_the_paths_as_they_are) {
    EXPECT_EQ(tshark_command("a b/$x&(1)", "p%q", "j'k"),
              R"-(cmd /c ""a b/$x&(1)" -Y "nas-eps||lte_rrc" -r "p%q" -T json > "j'k"")-");
}

TEST(tshark_command, is_utf8) {
    EXPECT_EQ(tshark_command(u8"\u00E4", "P", "J"),
              "cmd /c \"\"\xC3\xA4\" -Y \"nas-eps||lte_rrc\" -r \"P\" -T json > \"J\"\"");
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
