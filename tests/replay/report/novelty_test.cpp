#include "replay/report/novelty.h"

#include <string>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

const outcome paging{.message = {.name = "PCCH, Paging"}};

bool is_new(novelty& news, const outcome& result, const std::vector<detail_value>& details = {}) {
    return news.is_new(result, details);
}

TEST(novelties, are_the_first_of_their_names) {
    novelty news;
    EXPECT_TRUE(is_new(news, paging));
    EXPECT_FALSE(is_new(news, paging));
    EXPECT_TRUE(is_new(news, {.message = {.name = "PCCH NB, Paging-NB"}}));
    EXPECT_FALSE(is_new(news, paging));
}

TEST(novelties, are_failures_each_time) {
    novelty news;
    const outcome failed{.message = paging.message, .failure = record_failure{}};
    is_new(news, failed);
    EXPECT_TRUE(is_new(news, failed));
}

TEST(novelties, are_malformed_messages_each_time) {
    novelty news;
    const outcome malformed{.message = {.name = "PCCH, Paging", .is_malformed = true}};
    is_new(news, malformed);
    EXPECT_TRUE(is_new(news, malformed));
}

TEST(novelties, are_messages_of_procedures_each_time) {
    novelty news;
    const outcome setup{.message = {.name = "Attach accept", .is_procedure = true}};
    is_new(news, setup);
    EXPECT_TRUE(is_new(news, setup));
}

TEST(novelties, are_ciphered_messages_once) {
    novelty news;
    const outcome ciphered{.message = {.name = "Ciphered NAS message", .is_ciphered = true}};
    EXPECT_TRUE(is_new(news, ciphered));
    EXPECT_FALSE(is_new(news, ciphered));
}

TEST(novelties, are_values_that_change_back_and_forth) {
    novelty news;
    is_new(news, paging, {{"tac", "1"}, {"apn", "iot"}});
    EXPECT_FALSE(is_new(news, paging, {{"tac", "1"}}));
    EXPECT_TRUE(is_new(news, paging, {{"tac", "2"}}));
    EXPECT_FALSE(is_new(news, paging, {{"tac", "2"}, {"apn", "iot"}}));
    EXPECT_TRUE(is_new(news, paging, {{"tac", "1"}}));
    EXPECT_FALSE(is_new(news, paging));
}

TEST(novelties, are_all_values_of_a_record_at_once) {
    novelty news;
    is_new(news, paging, {{"tac", "1"}, {"apn", "iot"}});
    EXPECT_TRUE(is_new(news, paging, {{"tac", "2"}, {"apn", "web"}}));
    EXPECT_FALSE(is_new(news, paging, {{"tac", "2"}, {"apn", "web"}}));
}

TEST(novelties, are_log_texts_once) {
    novelty news;
    is_new(news, paging);
    const outcome logged{.message = paging.message, .log = {{3, "a"}, {3, "b"}}};
    EXPECT_TRUE(is_new(news, logged));
    EXPECT_FALSE(is_new(news, logged));
    EXPECT_TRUE(is_new(news, {.message = paging.message, .log = {{3, "a"}, {3, "c"}}}));
}

TEST(novelties, are_no_timings) {
    novelty news;
    is_new(news, paging);
    EXPECT_FALSE(
        is_new(news, {.message = paging.message, .log = {{3, "tshark processing took: 412ms"}}}));
}

TEST(novelties, are_no_names_beyond_a_thousand) {
    novelty news;
    for (int number = 1; number <= 1'000; ++number) {
        EXPECT_TRUE(is_new(news, {.message = {.name = std::to_string(number)}}));
    }
    EXPECT_FALSE(is_new(news, {.message = {.name = "one more"}}));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
