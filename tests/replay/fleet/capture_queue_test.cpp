#include "replay/fleet/capture_queue.h"

#include <atomic>
#include <filesystem>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(queue_of_captures, runs_those_first_that_come_first) {
    std::vector<std::string> run;
    std::latch all(3);
    capture_queue queue(1, [&](const fs::path& capture, std::size_t) {
        run.push_back(capture.string());
        all.count_down();
    });
    for (const char* capture : {"2", "1", "3"}) {
        queue.add(capture);
    }
    all.wait();
    queue.end();
    EXPECT_THAT(run, ElementsAre("2", "1", "3"));
}

TEST(queue_of_captures, runs_as_many_at_a_time_as_there_are_jobs) {
    std::latch all(3);
    std::atomic<int> numbers = 0;
    capture_queue queue(3, [&](const fs::path&, std::size_t job) {
        numbers |= 1 << job;
        all.arrive_and_wait();
    });
    for (int count = 0; count < 3; ++count) {
        queue.add("capture");
    }
    all.wait();
    queue.end();
    EXPECT_EQ(numbers, 0b111);
}

TEST(queue_of_captures, begins_nothing_more_in_the_end_and_waits_for_what_runs) {
    std::latch begun(1);
    int ended = 0;
    capture_queue queue(1, [&](const fs::path&, std::size_t) {
        begun.count_down();
        while (!queue.has_ended()) {
            std::this_thread::yield();
        }
        ++ended;
    });
    queue.add("first");
    begun.wait();
    queue.add("second");
    queue.end();
    EXPECT_EQ(ended, 1);
}

TEST(queue_of_captures, begins_nothing_more_once_a_run_has_thrown_and_passes_that_on) {
    int begun = 0;
    std::latch both_wait(1);
    capture_queue queue(1, [&](const fs::path&, std::size_t) {
        ++begun;
        both_wait.wait();
        throw std::runtime_error("full");
    });
    queue.add("first");
    queue.add("second");
    EXPECT_FALSE(queue.has_ended());
    both_wait.count_down();
    while (!queue.has_ended()) {
        std::this_thread::yield();
    }
    EXPECT_THROW(queue.end(), std::runtime_error);
    EXPECT_EQ(begun, 1);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
