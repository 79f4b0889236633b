// Connections made of lists of times.
#include "replay/trace/connection_log.h"

#include <cstdint>
#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/message/describe_message.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using event = message_event;

constexpr std::uint64_t second = 1'000'000;
constexpr std::uint64_t start = 1'700'000'000 * second;

/// Count, least, median, greatest and sum, in seconds.
using figures =
    std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t>;

figures figures_of(const duration_statistics& durations) {
    return {durations.count(), durations.least() / second, durations.median() / second,
            durations.greatest() / second, durations.sum() / second};
}

class connection_logs : public testing::Test {
  protected:
    /// @param at seconds from the beginning of the trace
    void add(std::uint64_t at, event what, const std::string& cause = "") {
        const trace_record record{.timestamp = start + at * second};
        outcome result;
        result.message.event = what;
        result.message.connection_cause = cause;
        log_.add(++number_, record, result);
    }

    /// A connection with content in its last but two seconds.
    void connect(std::uint64_t from, std::uint64_t to, const std::string& cause = "mo-Data") {
        add(from, event::connection_request, cause);
        add(to - 2, event::content);
        add(to, event::connection_end);
    }

    const connection_log& log() const { return log_; }

  private:
    connection_log log_;
    std::uint64_t number_ = 0;
};

TEST_F(connection_logs, know_the_connection_that_goes_on_and_the_last_that_ended) {
    EXPECT_FALSE(log().current());
    EXPECT_FALSE(log().last());
    add(1, event::connection_request, "mo-Data");
    ASSERT_TRUE(log().current());
    EXPECT_EQ(log().current()->first_record, 1U);
    add(5, event::connection_end);
    EXPECT_FALSE(log().current());
    ASSERT_TRUE(log().last());
    EXPECT_EQ(log().last()->last_record, 2U);
}

TEST_F(connection_logs, of_nothing_have_nothing) {
    EXPECT_THAT(log().connections(), IsEmpty());
    EXPECT_EQ(log().connected().count(), 0U);
    EXPECT_EQ(log().incomplete(), 0U);
    EXPECT_EQ(log().share_connected(), std::nullopt);
    EXPECT_EQ(log().begin(), 0U);
    EXPECT_EQ(log().end(), 0U);
}

TEST_F(connection_logs, measure_connections_and_the_idle_time_between) {
    connect(0, 10);
    connect(110, 130);
    connect(430, 470);
    EXPECT_EQ(figures_of(log().connected()), figures(3, 10, 20, 40, 70));
    EXPECT_EQ(figures_of(log().idle()), figures(2, 100, 200, 300, 400));
    EXPECT_EQ(log().incomplete(), 0U);
}

TEST_F(connection_logs, show_connections_with_their_records_times_and_causes) {
    add(0, event::none);
    connect(5, 12, "mt-Access");
    EXPECT_THAT(log().connections(),
                ElementsAre(FieldsAre(2U, 4U, start + 5 * second, start + 10 * second,
                                      start + 12 * second, "mt-Access")));
}

TEST_F(connection_logs, measure_from_the_last_content_to_the_release) {
    add(0, event::connection_request);
    add(1, event::content);
    add(4, event::content);
    add(9, event::connection_end);
    connect(20, 30);
    EXPECT_EQ(figures_of(log().inactivity()), figures(2, 2, 3, 5, 7));
}

TEST_F(connection_logs, have_no_silence_where_nothing_was_said) {
    add(0, event::connection_request);
    add(1, event::connection_end);
    EXPECT_EQ(log().inactivity().count(), 0U);
    EXPECT_EQ(log().connected().count(), 1U);
}

TEST_F(connection_logs, do_not_take_broadcasts_and_paging_for_content) {
    add(0, event::connection_request);
    add(2, event::content);
    add(5, event::none);
    add(6, event::paging);
    add(9, event::connection_end);
    EXPECT_EQ(figures_of(log().inactivity()), figures(1, 7, 7, 7, 7));
}

TEST_F(connection_logs, take_updates_for_content) {
    add(0, event::connection_request);
    add(5, event::update_request);
    add(9, event::connection_end);
    EXPECT_EQ(figures_of(log().inactivity()), figures(1, 4, 4, 4, 4));
}

TEST_F(connection_logs, do_not_take_content_outside_of_connections_for_one) {
    add(0, event::content);
    add(5, event::connection_request);
    add(6, event::connection_end);
    add(8, event::content);
    EXPECT_EQ(log().inactivity().count(), 0U);
    EXPECT_EQ(log().incomplete(), 0U);
}

TEST_F(connection_logs, measure_between_updates) {
    for (const std::uint64_t at : {0U, 3600U, 7200U, 12600U}) {
        add(at, event::update_request);
    }
    EXPECT_EQ(figures_of(log().between_updates()), figures(3, 3600, 3600, 5400, 12600));
}

TEST_F(connection_logs, take_updates_less_than_fifteen_seconds_apart_for_one) {
    for (const std::uint64_t at : {0U, 1U, 14U, 15U, 29U}) {
        add(at, event::update_request);
    }
    EXPECT_EQ(figures_of(log().between_updates()), figures(1, 15, 15, 15, 15));
}

TEST_F(connection_logs, count_what_lacks_a_beginning_or_an_end) {
    add(0, event::connection_end);
    EXPECT_EQ(log().incomplete(), 1U);
    add(10, event::connection_request);
    EXPECT_EQ(log().incomplete(), 2U);
    add(20, event::connection_request);
    EXPECT_EQ(log().incomplete(), 3U);
    EXPECT_EQ(log().connected().count(), 0U);
    EXPECT_THAT(log().causes(), IsEmpty());
    add(25, event::connection_end);
    EXPECT_EQ(log().incomplete(), 2U);
    EXPECT_EQ(figures_of(log().connected()), figures(1, 5, 5, 5, 5));
}

TEST_F(connection_logs, are_not_idle_where_a_request_begins_a_connection_anew) {
    connect(0, 10);
    add(20, event::connection_request);
    add(50, event::connection_request);
    EXPECT_EQ(figures_of(log().idle()), figures(1, 10, 10, 10, 10));
}

TEST_F(connection_logs, count_paging_and_causes) {
    add(0, event::paging);
    add(1, event::paging);
    connect(2, 10, "mo-Data");
    connect(12, 20, "mt-Access");
    connect(22, 30, "mo-Data");
    connect(32, 40, "");
    EXPECT_EQ(log().paging(), 2U);
    EXPECT_THAT(log().causes(),
                ElementsAre(Pair("mo-Data", 2U), Pair("mt-Access", 1U), Pair("unknown", 1U)));
}

TEST_F(connection_logs, give_the_share_of_the_whole_trace_that_was_connected) {
    add(0, event::none);
    connect(10, 30);
    add(80, event::paging);
    EXPECT_DOUBLE_EQ(log().share_connected().value_or(-1), 25.0);
}

TEST_F(connection_logs, give_no_share_without_a_connection_that_ended) {
    add(0, event::connection_request);
    add(80, event::content);
    EXPECT_EQ(log().share_connected(), std::nullopt);
}

TEST_F(connection_logs, give_no_share_of_no_time) {
    add(5, event::connection_request);
    add(5, event::connection_end);
    EXPECT_EQ(log().connected().count(), 1U);
    EXPECT_EQ(log().share_connected(), std::nullopt);
}

TEST_F(connection_logs, leave_out_durations_that_go_back_in_time) {
    connect(100, 110);
    add(50, event::connection_request);
    add(45, event::content);
    add(40, event::connection_end);
    EXPECT_EQ(figures_of(log().connected()), figures(1, 10, 10, 10, 10));
    EXPECT_EQ(figures_of(log().inactivity()), figures(1, 2, 2, 2, 2));
    EXPECT_EQ(log().idle().count(), 0U);
    EXPECT_EQ(log().begin(), start + 40 * second);
    EXPECT_EQ(log().end(), start + 110 * second);
    EXPECT_DOUBLE_EQ(log().share_connected().value_or(-1), 1000.0 / 70);
}

TEST_F(connection_logs, measure_on_from_an_update_that_went_back_in_time) {
    add(1000, event::update_request);
    add(0, event::update_request);
    add(30, event::update_request);
    EXPECT_EQ(figures_of(log().between_updates()), figures(1, 30, 30, 30, 30));
}

TEST_F(connection_logs, show_the_first_thousand_connections_and_count_all) {
    for (std::uint64_t i = 0; i < 1'500; ++i) {
        connect(10 * i, 10 * i + 5);
    }
    EXPECT_THAT(log().connections(), SizeIs(1'000));
    EXPECT_EQ(log().connected().count(), 1'500U);
    EXPECT_EQ(log().idle().count(), 1'499U);
}

TEST(durations, have_an_exact_median_of_a_few) {
    duration_statistics durations;
    for (const std::uint64_t duration : {9U, 1U, 5U}) {
        durations.add(duration);
    }
    EXPECT_EQ(durations.median(), 5U);
    durations.add(8);
    EXPECT_EQ(durations.median(), 6U);
    EXPECT_EQ(durations.least(), 1U);
    EXPECT_EQ(durations.greatest(), 9U);
    EXPECT_EQ(durations.sum(), 23U);
}

TEST(durations, have_an_exact_median_of_ten_thousand) {
    duration_statistics durations;
    for (std::uint64_t duration = 10'000; duration > 0; --duration) {
        durations.add(2 * duration);
    }
    EXPECT_EQ(durations.median(), 10'001U);
}

TEST(durations, stay_true_for_many) {
    duration_statistics durations;
    constexpr std::uint64_t count = 100'000;
    for (std::uint64_t duration = 0; duration < count; ++duration) {
        durations.add(duration);
    }
    EXPECT_EQ(durations.count(), count);
    EXPECT_EQ(durations.least(), 0U);
    EXPECT_EQ(durations.greatest(), count - 1);
    // Every sixteenth is kept by then.
    EXPECT_NEAR(static_cast<double>(durations.median()), static_cast<double>(count) / 2, 16);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
