#include "replay/fleet/fleet_run.h"

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <latch>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

struct taken_rows {
    std::vector<std::string> rows;
    std::vector<std::size_t> ended;
    std::function<void(std::size_t, const fleet_row&)> take = [this](std::size_t capture,
                                                                     const fleet_row& row) {
        rows.push_back(std::to_string(capture) + row.at(0));
    };
    std::function<void(std::size_t)> end = [this](std::size_t capture) {
        ended.push_back(capture);
    };
};

TEST(fleet_run, takes_rows_in_order_whatever_ends_first) {
    taken_rows taken;
    std::latch others(3);
    run_fleet({.captures = 4,
               .jobs = 2,
               .run = [&](std::size_t capture, std::size_t) -> std::optional<fleet_row> {
                   // The first one ends after all others.
                   if (capture == 0) {
                       others.wait();
                   } else {
                       others.count_down();
                   }
                   return fleet_row{"x"};
               },
               .take = taken.take,
               .ended = taken.end});
    EXPECT_THAT(taken.rows, ElementsAre("0x", "1x", "2x", "3x"));
    EXPECT_THAT(taken.ended, UnorderedElementsAre(0, 1, 2, 3));
}

TEST(fleet_run, runs_as_many_at_a_time_as_it_is_told) {
    taken_rows taken;
    std::latch all(3);
    run_fleet({.captures = 3,
               .jobs = 3,
               .run = [&](std::size_t, std::size_t job) -> std::optional<fleet_row> {
                   all.arrive_and_wait();
                   return fleet_row{job < 3 ? "" : " in an unknown thread"};
               },
               .take = taken.take,
               .ended = taken.end});
    EXPECT_THAT(taken.rows, ElementsAre("0", "1", "2"));
}

TEST(fleet_run, begins_nothing_more_once_one_is_given_up_and_takes_what_has_ended) {
    taken_rows taken;
    std::atomic<int> begun = 0;
    std::latch second(1);
    run_fleet({.captures = 100,
               .jobs = 2,
               .run = [&](std::size_t capture, std::size_t) -> std::optional<fleet_row> {
                   ++begun;
                   if (capture == 0) {
                       second.wait();
                       return std::nullopt;
                   }
                   if (capture == 2) {
                       second.count_down();
                       return std::nullopt;
                   }
                   return fleet_row{""};
               },
               .take = taken.take,
               .ended = taken.end});
    EXPECT_EQ(begun, 3);
    EXPECT_THAT(taken.rows, ElementsAre("1"));
}

TEST(fleet_run, gives_up_where_a_run_throws_and_returns_what_it_threw) {
    taken_rows taken;
    const auto failure =
        run_fleet({.captures = 3,
                   .jobs = 1,
                   .run = [](std::size_t capture, std::size_t) -> std::optional<fleet_row> {
                       return capture == 1 ? throw std::runtime_error("full") : fleet_row{"x"};
                   },
                   .take = taken.take,
                   .ended = taken.end});
    EXPECT_THAT(taken.rows, ElementsAre("0x"));
    EXPECT_THAT([&] { std::rethrow_exception(failure); },
                ThrowsMessage<std::runtime_error>("full"));
}

TEST(fleet_run, returns_the_first_of_what_its_runs_throw) {
    struct end_of_thread {
        std::latch* end;
        ~end_of_thread() { end->count_down(); }
    };
    taken_rows taken;
    std::latch both(2);
    std::latch first_has_ended(1);
    const auto failure =
        run_fleet({.captures = 2,
                   .jobs = 2,
                   .run = [&](std::size_t capture, std::size_t) -> std::optional<fleet_row> {
                       both.arrive_and_wait();
                       if (capture == 0) {
                           thread_local const end_of_thread end{&first_has_ended};
                           throw std::runtime_error("first");
                       }
                       first_has_ended.wait();
                       throw std::runtime_error("second");
                   },
                   .take = taken.take,
                   .ended = taken.end});
    EXPECT_THAT([&] { std::rethrow_exception(failure); },
                ThrowsMessage<std::runtime_error>("first"));
}

TEST(fleet_run, passes_on_what_the_taker_throws) {
    EXPECT_THROW(
        run_fleet({.captures = 2,
                   .jobs = 1,
                   .run = [](std::size_t, std::size_t) { return fleet_row{""}; },
                   .take = [](std::size_t, const fleet_row&) { throw std::runtime_error("full"); },
                   .ended = [](std::size_t) {}}),
        std::runtime_error);
}

TEST(fleet_run, ends_without_captures) {
    taken_rows taken;
    run_fleet({.captures = 0, .jobs = 2, .run = {}, .take = taken.take, .ended = taken.end});
    EXPECT_THAT(taken.rows, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
