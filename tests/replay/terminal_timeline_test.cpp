#include "replay/terminal_timeline.h"

#include <cstdint>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::HasSubstr;
using testing::Not;
using event = message_event;

constexpr std::uint64_t start = 1'764'000'000'000'000;
constexpr std::uint64_t second = 1'000'000;
constexpr std::uint64_t half = second / 2;

class timelines_of_characters : public testing::Test {
  protected:
    void add(std::uint64_t microseconds, event what, const std::string& name = "a") {
        timeline_.add(
            ++number_,
            {.timestamp = start + microseconds, .format = "", .payload = {}, .failure = {}},
            {.message = {.name = name, .event = what}});
    }

    std::string printed() {
        timeline_.end({});
        return out_.str();
    }

    static std::string line(const char* name, const std::string& marks) {
        return "    " + std::string(name) + std::string(28 - std::string(name).size(), ' ') +
               marks + '\n';
    }

  private:
    std::ostringstream out_;
    // A line has 48 columns for the time.
    terminal_timeline timeline_{out_, 80};
    std::uint64_t number_ = 0;
};

TEST_F(timelines_of_characters, show_connections_and_what_happened_in_them) {
    add(0, event::connection_request);
    add(0, event::content, "Attach request, PDN connectivity request");
    add(11 * second + half, event::connection_end);
    add(24 * second + half, event::paging);
    add(36 * second + half, event::connection_request);
    add(36 * second + half, event::update_request);
    add(48 * second - 1, event::connection_end);
    EXPECT_EQ(
        printed(),
        "\ntimeline from 2025-11-24T16:00:00.000000Z to 2025-11-24T16:00:47.999999Z\n" +
            line("connected", std::string(12, '#') + std::string(24, ' ') + std::string(12, '#')) +
            line("idle", std::string(11, ' ') + std::string(26, '-') + std::string(10, ' ') + '-') +
            line("attach request", "^") + line("tracking area update", std::string(36, ' ') + '^') +
            line("paging", std::string(24, ' ') + '^') +
            line("release", std::string(11, ' ') + '^' + std::string(35, ' ') + '^'));
}

TEST_F(timelines_of_characters, show_a_connection_that_goes_on) {
    add(0, event::none);
    add(24 * second + half, event::connection_request);
    add(48 * second - 1, event::content);
    EXPECT_THAT(printed(),
                HasSubstr(line("connected", std::string(24, ' ') + std::string(24, '#'))));
}

TEST_F(timelines_of_characters, end_the_idle_time_with_the_first_of_several_requests) {
    add(0, event::none);
    add(12 * second + half, event::connection_end);
    add(24 * second + half, event::connection_request);
    add(36 * second + half, event::connection_request);
    add(48 * second - 1, event::content);
    EXPECT_THAT(printed(), HasSubstr(line("idle", std::string(12, ' ') + std::string(13, '-'))));
}

TEST_F(timelines_of_characters, leave_out_what_did_not_happen) {
    add(0, event::connection_request);
    add(second, event::connection_end);
    EXPECT_THAT(printed(), AllOf(HasSubstr("connected"), Not(HasSubstr("paging"))));
}

TEST_F(timelines_of_characters, are_empty_where_nothing_happened) {
    add(0, event::none);
    add(second, event::content);
    EXPECT_EQ(printed(), "");
}

TEST_F(timelines_of_characters, are_empty_without_a_record) {
    EXPECT_EQ(printed(), "");
}

TEST_F(timelines_of_characters, may_be_a_moment) {
    add(0, event::paging);
    EXPECT_THAT(printed(), HasSubstr(line("paging", "^")));
}

TEST_F(timelines_of_characters, take_time_stamps_that_go_back) {
    add(48 * second - 1, event::none);
    add(0, event::paging);
    EXPECT_THAT(printed(), HasSubstr(line("paging", "^")));
}

TEST_F(timelines_of_characters, may_be_of_ten_thousand_years) {
    add(0, event::paging);
    add(250'000'000'000'000'000, event::connection_request);
    EXPECT_THAT(printed(), AllOf(HasSubstr(line("paging", "^")),
                                 HasSubstr(line("connected", std::string(47, ' ') + '#'))));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
