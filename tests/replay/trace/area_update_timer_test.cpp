#include "replay/trace/area_update_timer.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using role = setting_role;

setting told(const std::string& name, const std::string& value, role whose = role::granted) {
    return {name, value, value == "deactivated" ? "" : "s", whose, ""};
}

class area_update_timers : public testing::Test {
  protected:
    void tell(std::uint64_t record, const std::vector<setting>& settings) {
        settings_.add(record, 0, settings);
        settings_.follow(record, {.registration = registration_event::accept});
    }

    /// @return such as "T3412 3240 s: 3240 in 2"
    std::string text() const {
        const auto timer = area_update_timer_of(settings_);
        if (!timer) {
            return "nothing";
        }
        const auto seconds = timer->seconds ? std::to_string(std::lround(*timer->seconds)) : "none";
        return timer->name + ' ' + timer->value + ": " + seconds + " in " +
               std::to_string(timer->record);
    }

  private:
    setting_history settings_;
};

TEST_F(area_update_timers, are_none_where_none_is_granted) {
    tell(1, {told("T3412 extended", "36000", role::requested)});
    EXPECT_EQ(text(), "nothing");
}

TEST_F(area_update_timers, are_t3412) {
    tell(2, {told("T3412", "3240")});
    EXPECT_EQ(text(), "T3412 3240 s: 3240 in 2");
}

TEST_F(area_update_timers, are_the_extended_one_where_it_is_granted) {
    tell(2, {told("T3412", "3240"), told("T3412 extended", "252000")});
    EXPECT_EQ(text(), "T3412 extended 252000 s: 252000 in 2");
}

TEST_F(area_update_timers, are_the_extended_one_of_an_accept_without_t3412) {
    tell(2, {told("T3412", "3240")});
    tell(3, {told("T3412 extended", "252000")});
    EXPECT_EQ(text(), "T3412 extended 252000 s: 252000 in 3");
}

TEST_F(area_update_timers, are_the_extended_one_alone) {
    tell(2, {told("T3412 extended", "252000")});
    EXPECT_EQ(text(), "T3412 extended 252000 s: 252000 in 2");
}

TEST_F(area_update_timers, are_t3412_again_where_a_later_accept_has_no_extended_one) {
    tell(2, {told("T3412", "3240"), told("T3412 extended", "252000")});
    tell(5, {told("T3412", "3240")});
    EXPECT_EQ(text(), "T3412 3240 s: 3240 in 2");
}

TEST_F(area_update_timers, may_be_deactivated) {
    tell(2, {told("T3412", "3240"), told("T3412 extended", "deactivated")});
    EXPECT_EQ(text(), "T3412 3240 s: 3240 in 2");
    tell(3, {told("T3412", "deactivated")});
    EXPECT_EQ(text(), "T3412 deactivated: none in 3");
}

TEST_F(area_update_timers, have_no_seconds_where_they_are_not_known) {
    auto odd = told("T3412", "3240");
    odd.known = false;
    tell(2, {odd});
    EXPECT_EQ(text(), "T3412 3240 s (?): none in 2");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
