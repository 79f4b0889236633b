#include "replay/report/json_lines.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

const trace_record nas_record{
    .timestamp = 1'764'000'000'000'000, .format = "nas-eps", .payload = {}, .failure = {}};

std::string json_line(std::uint64_t number, const trace_record& record, const outcome& result) {
    std::ostringstream out;
    json_lines lines(out);
    lines.begin("heading");
    lines.add(number, record, result);
    lines.end({});
    return out.str();
}

TEST(json_lines, hold_the_result_document) {
    EXPECT_EQ(json_line(7, nas_record, {.document = {{"a", {{"b", 1}}}}}),
              R"({"number":7,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps",)"
              R"("result":{"a":{"b":1}},"log":[]})"
              "\n");
}

TEST(json_lines, tell_that_there_is_no_result) {
    EXPECT_EQ(json_line(8, nas_record, {}),
              R"({"number":8,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps",)"
              R"("result":null,"log":[]})"
              "\n");
}

TEST(json_lines, hold_the_error_in_place_of_a_result) {
    EXPECT_EQ(json_line(9, nas_record,
                        {.failure = record_failure{failure_kind::analysis, "a \"reason\"\n"}}),
              R"({"number":9,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps",)"
              R"("error":"a \"reason\"\n","log":[]})"
              "\n");
}

TEST(json_lines, hold_every_log_message) {
    EXPECT_EQ(
        json_line(1, nas_record,
                  {.log = {{3, "x mapping not found"}, {3, "tshark processing took: 412ms"}}}),
        R"({"number":1,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps","result":null,)"
        R"("log":[{"level":3,"message":"x mapping not found"},)"
        R"({"level":3,"message":"tshark processing took: 412ms"}]})"
        "\n");
}

TEST(json_lines, tell_of_a_malformed_message) {
    EXPECT_EQ(json_line(8, nas_record, {.message = {.is_malformed = true}}),
              R"({"number":8,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps",)"
              R"("result":null,"malformed":true,"log":[]})"
              "\n");
}

TEST(json_lines, hold_every_setting_and_mark_what_is_not_known) {
    EXPECT_EQ(json_line(8, nas_record,
                        {.settings = {{"T3324", "10", "s", setting_role::granted, "24.008"},
                                      {"nB", "9", "", setting_role::broadcast, "36.331", false}}}),
              R"({"number":8,"time":"2025-11-24T16:00:00.000000Z","format":"nas-eps",)"
              R"("result":null,"settings":[)"
              R"({"name":"T3324","value":"10","unit":"s","role":"granted","clause":"24.008"},)"
              R"({"name":"nB","value":"9","unit":"","role":"broadcast","clause":"36.331",)"
              R"("known":false}],"log":[]})"
              "\n");
}

TEST(json_lines, replace_what_is_no_utf_8) {
    EXPECT_EQ(json_line(1, {.timestamp = 0, .format = "a\xff", .payload = {}, .failure = {}}, {}),
              "{\"number\":1,\"time\":\"1970-01-01T00:00:00.000000Z\",\"format\":\"a\xef\xbf\xbd\","
              "\"result\":null,\"log\":[]}\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
