#include "replay/progress.h"

#include <sstream>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::EndsWith;

constexpr const char* cleared = "\r\033[K";

TEST(progress_bar, shows_the_share_of_bytes_and_the_record) {
    std::ostringstream terminal;
    progress bar(&terminal, 200);
    bar.draw(50, 3);
    EXPECT_EQ(terminal.str(), "\r\033[K[#######.......................]  25%  record 3");
}

TEST(progress_bar, is_full_at_the_end) {
    std::ostringstream terminal;
    progress bar(&terminal, 200);
    bar.draw(200, 7);
    EXPECT_THAT(terminal.str(), EndsWith("[##############################] 100%  record 7"));
}

TEST(progress_bar, stays_full_when_the_capture_grew) {
    std::ostringstream terminal;
    progress bar(&terminal, 200);
    bar.draw(300, 9);
    EXPECT_THAT(terminal.str(), EndsWith("[##############################] 100%  record 9"));
}

TEST(progress_bar, shows_only_the_record_where_the_size_is_unknown) {
    std::ostringstream terminal;
    progress bar(&terminal, 0);
    bar.draw(300, 9);
    EXPECT_EQ(terminal.str(), "\r\033[Krecord 9");
}

TEST(progress_bar, is_cleared_for_other_output_and_at_the_end) {
    std::ostringstream terminal;
    {
        progress bar(&terminal, 200);
        bar.draw(50, 3);
        bar.clear();
        EXPECT_THAT(terminal.str(), EndsWith(cleared));
        bar.draw(100, 4);
    }
    EXPECT_THAT(terminal.str(), EndsWith(cleared));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
