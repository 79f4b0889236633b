#include "replay/input/extraction/packet_time.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(packet_times, are_seconds_with_a_fraction) {
    EXPECT_EQ(packet_time("1764100000.150000000"), 1'764'100'000'150'000U);
    EXPECT_EQ(packet_time("0.000001000"), 1U);
}

TEST(packet_times, are_dates_in_newer_versions_of_tshark) {
    EXPECT_EQ(packet_time("2025-11-25T19:46:40.150000000Z"), 1'764'100'000'150'000U);
    EXPECT_EQ(packet_time("1970-01-01T00:00:00.000001000Z"), 1U);
    EXPECT_EQ(packet_time("2024-02-29T23:59:59Z"), 1'709'251'199'000'000U);
}

TEST(packet_times, lose_what_is_finer_than_microseconds) {
    EXPECT_EQ(packet_time("1.123456999"), 1'123'456U);
    EXPECT_EQ(packet_time("1970-01-01T00:00:01.123456999Z"), 1'123'456U);
}

TEST(packet_times, may_have_fewer_digits) {
    EXPECT_EQ(packet_time("7"), 7'000'000U);
    EXPECT_EQ(packet_time("7."), 7'000'000U);
    EXPECT_EQ(packet_time("7.5"), 7'500'000U);
    EXPECT_EQ(packet_time("1970-01-01T00:00:07.5Z"), 7'500'000U);
}

TEST(packet_times, are_0_for_what_is_no_time) {
    for (const auto* text : {"", "x", "T", "2025-11-25T19:46", "1960-01-01T00:00:00Z", "-1"}) {
        EXPECT_EQ(packet_time(text), 0U) << text;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
