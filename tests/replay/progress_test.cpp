#include "replay/progress.h"

#include <sstream>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;

constexpr const char* cleared = "\r\033[K";

class progress_bar : public testing::Test {
  protected:
    progress_bar() { time = progress::clock::time_point{}; }

    static progress::clock::time_point now() { return time; }

    static progress::clock::time_point time;
    std::ostringstream terminal;
};

progress::clock::time_point progress_bar::time;

TEST_F(progress_bar, shows_share_record_speed_and_time_left) {
    progress bar(&terminal, 200, now);
    time += 20s;
    bar.draw(50, 30);
    EXPECT_EQ(terminal.str(),
              "\r\033[K[#######.......................]  25%  record 30, 1.5/s, 1:00 left");
}

TEST_F(progress_bar, shows_no_speed_before_time_has_passed) {
    progress bar(&terminal, 200, now);
    bar.draw(50, 3);
    EXPECT_EQ(terminal.str(), "\r\033[K[#######.......................]  25%  record 3");
}

TEST_F(progress_bar, is_full_at_the_end) {
    progress bar(&terminal, 200, now);
    time += 65s;
    bar.draw(200, 65);
    EXPECT_THAT(terminal.str(),
                EndsWith("[##############################] 100%  record 65, 1.0/s, 0:00 left"));
}

TEST_F(progress_bar, stays_full_when_the_capture_grew) {
    progress bar(&terminal, 200, now);
    bar.draw(300, 9);
    EXPECT_THAT(terminal.str(), EndsWith("[##############################] 100%  record 9"));
}

TEST_F(progress_bar, shows_no_share_where_the_size_is_unknown) {
    progress bar(&terminal, 0, now);
    time += 2s;
    bar.draw(300, 9);
    EXPECT_EQ(terminal.str(), "\r\033[Krecord 9, 4.5/s");
}

TEST_F(progress_bar, is_drawn_no_more_than_ten_times_a_second) {
    progress bar(&terminal, 0, now);
    bar.draw(1, 1);
    time += 99ms;
    bar.draw(2, 2);
    EXPECT_THAT(terminal.str(), EndsWith("record 1"));
    time += 1ms;
    bar.draw(3, 3);
    EXPECT_THAT(terminal.str(), EndsWith("record 3, 30.0/s"));
}

TEST_F(progress_bar, is_cleared_for_other_output_and_at_the_end) {
    {
        progress bar(&terminal, 200, now);
        bar.draw(50, 3);
        bar.clear();
        EXPECT_THAT(terminal.str(), EndsWith(cleared));
        time += 1s;
        bar.draw(100, 4);
    }
    EXPECT_THAT(terminal.str(), EndsWith(cleared));
}

TEST_F(progress_bar, writes_nothing_before_it_is_drawn) {
    { progress(&terminal, 200, now).clear(); }
    EXPECT_EQ(terminal.str(), "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
