#include "context/unique_path.h"

#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "context/file_status.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK {
namespace {

class unique_paths : public TESTING::scratch_test {};

std::int64_t frozen_clock() {
    return 1'700'000'000'000'000'000;
}

/// 1, 2, 3, ... on successive calls.
std::int64_t counting_clock() {
    static std::int64_t time = 0;
    return ++time;
}

TEST_F(unique_paths, join_prefix_time_and_attempt_in_the_working_directory) {
    EXPECT_EQ(unique_path("tshark", "json", frozen_clock),
              scratch() / "tshark17000000000000000001.json");
}

TEST_F(unique_paths, take_the_next_attempt_where_something_exists) {
    TESTING::write_file("tshark17000000000000000001.json", "a file");
    std::filesystem::create_directory("tshark17000000000000000002.json");
    EXPECT_EQ(unique_path("tshark", "json", frozen_clock).filename(),
              "tshark17000000000000000003.json");
}

TEST_F(unique_paths, read_the_clock_anew_for_each_attempt) {
    TESTING::write_file("x11.y", "");
    EXPECT_EQ(unique_path("x", "y", counting_clock).filename(), "x22.y");
}

TEST_F(unique_paths, create_nothing) {
    unique_path("tshark_temp", "pcapng");
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(unique_paths, carry_the_time_in_steps_of_100_nanoseconds) {
    const std::string name = unique_path("tshark", "json").filename().string();
    EXPECT_TRUE(std::regex_match(name, std::regex("tshark[0-9]{17}001\\.json"))) << name;
}

TEST(wall_clock, steps_by_100_nanoseconds) {
    std::set<std::int64_t> last_digits;
    for (int reading = 0; reading < 1'000'000 && last_digits.size() < 10; ++reading) {
        last_digits.insert(wall_clock_nanoseconds() % 1'000);
    }
    EXPECT_EQ(last_digits.size(), 10U);
}

TEST(wall_clock, counts_from_1970) {
    // 2020-01-01 to 2100-01-01.
    EXPECT_GT(wall_clock_nanoseconds(), 1'577'836'800'000'000'000);
    EXPECT_LT(wall_clock_nanoseconds(), 4'102'444'800'000'000'000);
    EXPECT_EQ(wall_clock_nanoseconds() % 100, 0);
}

}  // namespace
}  // namespace KIVRA::TSHARK
