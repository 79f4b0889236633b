#include "replay/input/extraction/nas_inside_rrc.h"

#include <string>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t start = 1'764'000'000'000'000;
constexpr std::uint64_t second = 1'000'000;

extracted_record rrc(std::uint64_t time) {
    return {.timestamp = time, .format = "lte_rrc.dl_dcch", .payload = {0}, .is_inside_rrc = false};
}

extracted_record nas(std::uint64_t time, std::uint8_t byte) {
    return {.timestamp = time, .format = "nas-eps", .payload = {byte}, .is_inside_rrc = false};
}

extracted_record inner_nas(std::uint64_t time, std::uint8_t byte) {
    return {.timestamp = time, .format = "nas-eps", .payload = {byte}, .is_inside_rrc = true};
}

/// What a record is: "rrc", or "nas" or "inner nas" with its byte.
std::string text_of(const extracted_record& record) {
    if (record.format != "nas-eps") {
        return "rrc";
    }
    return (record.is_inside_rrc ? "inner nas " : "nas ") + std::to_string(record.payload.at(0));
}

/// The records that leave the queue now.
std::vector<std::string> decided(nas_inside_rrc& queue) {
    std::vector<std::string> texts;
    while (const auto record = queue.next()) {
        texts.push_back(text_of(*record));
    }
    return texts;
}

/// The records that leave the queue in all.
std::vector<std::string> decided(const std::vector<extracted_record>& records) {
    nas_inside_rrc queue;
    for (const auto& record : records) {
        queue.add(record);
    }
    queue.let_go();
    return decided(queue);
}

TEST(nas_inside_rrc, becomes_a_record_behind_the_rrc_message) {
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), nas(start + 5 * second, 2)}),
                ElementsAre("rrc", "inner nas 1", "nas 2"));
}

TEST(nas_inside_rrc, is_dropped_when_the_same_comes_within_a_second) {
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), nas(start + 200'000, 1)}),
                ElementsAre("rrc", "nas 1"));
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), nas(start + second, 1)}),
                ElementsAre("rrc", "nas 1"));
}

TEST(nas_inside_rrc, stays_when_the_same_comes_later) {
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), nas(start + second + 1, 1)}),
                ElementsAre("rrc", "inner nas 1", "nas 1"));
}

TEST(nas_inside_rrc, is_dropped_when_the_same_came_within_a_second) {
    EXPECT_THAT(decided({nas(start, 1), rrc(start + second), inner_nas(start + second, 1)}),
                ElementsAre("nas 1", "rrc"));
}

TEST(nas_inside_rrc, stays_when_the_same_came_earlier) {
    EXPECT_THAT(decided({nas(start, 1), rrc(start + second + 1), inner_nas(start + second + 1, 1)}),
                ElementsAre("nas 1", "rrc", "inner nas 1"));
}

TEST(nas_inside_rrc, stays_beside_other_bytes) {
    EXPECT_THAT(decided({nas(start, 2), rrc(start), inner_nas(start, 1), nas(start + 1, 3)}),
                ElementsAre("nas 2", "rrc", "inner nas 1", "nas 3"));
}

TEST(nas_inside_rrc, is_not_dropped_for_another_one_inside_rrc) {
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), rrc(start + 1), inner_nas(start + 1, 1)}),
                ElementsAre("rrc", "inner nas 1", "rrc", "inner nas 1"));
}

TEST(nas_inside_rrc, is_not_dropped_for_a_record_of_another_format) {
    auto other = nas(start, 1);
    other.format = "ip";
    EXPECT_THAT(decided({rrc(start), inner_nas(start, 1), other}),
                ElementsAre("rrc", "inner nas 1", "rrc"));
}

TEST(nas_inside_rrc, leaves_other_records_no_need_to_wait) {
    nas_inside_rrc queue;
    queue.add(rrc(start));
    queue.add(nas(start, 1));
    EXPECT_THAT(decided(queue), ElementsAre("rrc", "nas 1"));
    EXPECT_TRUE(queue.empty());
}

TEST(nas_inside_rrc, waits_until_the_time_stamps_are_a_second_further) {
    nas_inside_rrc queue;
    queue.add(rrc(start));
    queue.add(inner_nas(start, 1));
    EXPECT_THAT(decided(queue), ElementsAre("rrc"));
    queue.add(rrc(start + second));
    EXPECT_THAT(decided(queue), IsEmpty());
    EXPECT_FALSE(queue.empty());
    queue.add(rrc(start + second + 1));
    EXPECT_THAT(decided(queue), ElementsAre("inner nas 1", "rrc", "rrc"));
}

TEST(nas_inside_rrc, waits_no_longer_once_it_is_to_be_dropped) {
    nas_inside_rrc queue;
    queue.add(inner_nas(start, 1));
    queue.add(nas(start + 1, 1));
    EXPECT_THAT(decided(queue), ElementsAre("nas 1"));
}

TEST(nas_inside_rrc, waits_no_longer_when_it_is_let_go) {
    nas_inside_rrc queue;
    queue.add(inner_nas(start, 1));
    queue.let_go();
    EXPECT_THAT(decided(queue), ElementsAre("inner nas 1"));
}

TEST(nas_inside_rrc, waits_again_behind_what_was_let_go) {
    nas_inside_rrc queue;
    queue.let_go();
    queue.add(inner_nas(start, 1));
    EXPECT_THAT(decided(queue), IsEmpty());
}

TEST(nas_inside_rrc, is_known_from_records_that_were_let_go) {
    nas_inside_rrc queue;
    queue.add(nas(start, 1));
    queue.let_go();
    EXPECT_THAT(decided(queue), ElementsAre("nas 1"));
    queue.add(inner_nas(start + second, 1));
    queue.let_go();
    EXPECT_THAT(decided(queue), IsEmpty());
}

TEST(nas_inside_rrc, waits_with_a_thousand_records_at_most) {
    nas_inside_rrc queue;
    queue.add(inner_nas(start, 1));
    for (int count = 2; count <= 1'000; ++count) {
        queue.add(rrc(start));
    }
    EXPECT_THAT(decided(queue), IsEmpty());
    queue.add(rrc(start));
    EXPECT_THAT(decided(queue), SizeIs(1'001));
}

TEST(nas_inside_rrc, is_sought_among_two_thousand_records_where_the_time_stands_still) {
    const auto decided_behind = [](int others) {
        nas_inside_rrc queue;
        queue.add(nas(start, 1));
        for (int count = 0; count < others; ++count) {
            queue.add(nas(start, 2));
        }
        decided(queue);
        queue.add(inner_nas(start, 1));
        queue.let_go();
        return decided(queue);
    };
    EXPECT_THAT(decided_behind(1'999), IsEmpty());
    EXPECT_THAT(decided_behind(2'000), ElementsAre("inner nas 1"));
}

TEST(nas_inside_rrc, waits_behind_a_clock_that_was_set_back) {
    nas_inside_rrc queue;
    queue.add(rrc(start + 10 * second));
    queue.add(rrc(start));
    queue.add(inner_nas(start, 1));
    EXPECT_THAT(decided(queue), ElementsAre("rrc", "rrc"));
    queue.add(nas(start, 1));
    EXPECT_THAT(decided(queue), ElementsAre("nas 1"));
}

TEST(nas_inside_rrc, waits_no_longer_when_the_clock_is_set_back) {
    nas_inside_rrc queue;
    queue.add(inner_nas(start, 1));
    queue.add(rrc(start - second));
    EXPECT_THAT(decided(queue), IsEmpty());
    queue.add(rrc(start - second - 1));
    EXPECT_THAT(decided(queue), ElementsAre("inner nas 1", "rrc", "rrc"));
}

TEST(nas_inside_rrc, is_found_where_time_stamps_go_back) {
    EXPECT_THAT(decided({nas(start + 10 * second, 1), rrc(start), inner_nas(start, 2),
                         nas(start - second, 2), nas(start + 20 * second, 3)}),
                ElementsAre("nas 1", "rrc", "nas 2", "nas 3"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
