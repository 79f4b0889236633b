#include "replay/page/page_rows.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;

constexpr std::uint64_t start = 1'764'000'000'000'000;

trace_record record_at(std::uint64_t timestamp, const std::string& format = "nas-eps") {
    return {.timestamp = timestamp, .format = format, .payload = {}, .failure = {}};
}

class rows_of_a_page : public testing::Test {
  protected:
    json row(const trace_record& record, const outcome& result) {
        connections_.add(++number_, record, result);
        return json::parse(rows_.row_of(record, result, connections_, number_));
    }

    json row(const outcome& result) { return row(record_at(start), result); }

  private:
    std::uint64_t number_ = 0;
    connection_log connections_;
    page_rows rows_;
};

TEST_F(rows_of_a_page, have_times_since_the_record_before) {
    EXPECT_EQ(row(record_at(start), {})[0], start);
    EXPECT_EQ(row(record_at(start + 250), {})[0], 250);
    EXPECT_EQ(row(record_at(start - 1), {})[0], -251);
}

TEST_F(rows_of_a_page, hold_texts_once) {
    const outcome accept{.message = {.name = "Attach accept"}, .document = {{"a", 1}}};
    EXPECT_EQ(row(accept),
              json::parse(R"([1764000000000000,6,0,"Attach accept","nas-eps",0,0,"{\"a\":1}"])"));
    EXPECT_EQ(row(accept), json::parse("[0,6,0,1,2,0,0,3]"));
}

TEST_F(rows_of_a_page, hold_settings_failures_and_log_messages_but_the_timing) {
    const auto values =
        row({.settings = {{.name = "T3324",
                           .value = "10",
                           .unit = "s",
                           .role = setting_role::granted,
                           .clause = "24.008, 10.5.7.4"}},
             .log = {{3, "x mapping not found"}, {3, "tshark processing took: 412ms"}},
             .failure = record_failure{failure_kind::analysis, "a reason"}});
    EXPECT_EQ(json::parse(values[6].get<std::string>()),
              json::parse(R"([["T3324","10","s","granted","24.008, 10.5.7.4",true]])"));
    EXPECT_EQ(values[8], "a reason");
    EXPECT_EQ(values[9], R"(["x mapping not found"])");
}

TEST_F(rows_of_a_page, tell_what_the_table_tells) {
    EXPECT_EQ(row({.document = {{"nas-eps", {{"tac", "7"}, {"apn", "iot"}}}}})[5],
              "tac 7, apn iot");
}

TEST_F(rows_of_a_page, mark_what_a_message_is) {
    EXPECT_EQ(row({.message = {.name = "a",
                               .is_procedure = true,
                               .is_malformed = true,
                               .is_ciphered = true}})[2],
              marks_malformed + marks_ciphered + marks_procedure);
    EXPECT_EQ(row({.message = {.name = "a", .event = message_event::update_request}})[2],
              marks_update_request);
}

TEST_F(rows_of_a_page, hold_the_connection_that_a_record_ends) {
    row({.message = {.name = "request",
                     .event = message_event::connection_request,
                     .connection_cause = "mo-Data"}});
    row(record_at(start + 2'000'000),
        {.message = {.name = "content", .event = message_event::content}});
    const auto end = row(record_at(start + 5'000'000),
                         {.message = {.name = "end", .event = message_event::connection_end}});
    EXPECT_EQ(end[2], marks_connection_end);
    EXPECT_EQ(end[10], json::parse(R"([1,5000000,3000000,"mo-Data"])"));
    EXPECT_EQ(row(record_at(start + 6'000'000), {}).size(), 5U);
}

TEST_F(rows_of_a_page, are_no_markup) {
    page_rows rows;
    const auto text =
        rows.row_of(record_at(0, "</script><!--"),
                    {.message = {.name = "a&b\xe2\x80\xa8"}, .document = {{"<b>", "<i>"}}}, {}, 1);
    EXPECT_EQ(text.find_first_of("<>&"), std::string::npos);
    const auto values = json::parse(text);
    EXPECT_EQ(values[3], "a&b\xe2\x80\xa8");
    EXPECT_EQ(values[4], "</script><!--");
    EXPECT_EQ(json::parse(values[7].get<std::string>()), json({{"<b>", "<i>"}}));
}

TEST_F(rows_of_a_page, are_ascii_whatever_comes) {
    page_rows rows;
    // A surrogate, what is no UTF-8, and a character beyond the basic plane.
    const auto text = rows.row_of(record_at(0, "\xed\xa0\x80\xff\xf0\x9f\x93\xb6"),
                                  {.document = {{"\xff", "\xed\xa0\x80"}}}, {}, 1);
    for (const char c : text) {
        EXPECT_LT(static_cast<unsigned char>(c), 0x80);
    }
    const auto format = json::parse(text)[4].get<std::string>();
    EXPECT_TRUE(format.ends_with("\xef\xbf\xbd\xf0\x9f\x93\xb6")) << format;
}

TEST_F(rows_of_a_page, remember_a_bounded_amount_of_text) {
    page_rows rows;
    constexpr std::size_t mebibyte = std::size_t{1} << 20U;
    const std::string first(mebibyte, 'a');
    rows.row_of(record_at(0, first), {}, {}, 1);
    EXPECT_LT(rows.row_of(record_at(0, first), {}, {}, 2).size(), 100U);
    for (char c = 'b'; c < 'i'; ++c) {
        rows.row_of(record_at(0, std::string(mebibyte, c)), {}, {}, 3);
    }
    EXPECT_GT(rows.row_of(record_at(0, first), {}, {}, 4).size(), mebibyte);
}

page_lane lane(const std::string& format, const std::string& name,
               message_direction direction = message_direction::unknown,
               message_event event = message_event::none) {
    return lane_of(record_at(0, format), {.name = name, .event = event, .direction = direction});
}

TEST(lanes, are_those_of_protocol_and_direction) {
    using enum message_direction;
    EXPECT_EQ(lane("nas-eps", "Attach request", uplink), page_lane::nas_uplink);
    EXPECT_EQ(lane("nas-eps_plain", "Attach accept", downlink), page_lane::nas_downlink);
    EXPECT_EQ(lane("nas-eps", "Ciphered NAS message"), page_lane::nas);
    EXPECT_EQ(lane("lte_rrc.ul_ccch", "UL-CCCH, RRCConnectionRequest", uplink),
              page_lane::rrc_uplink);
    EXPECT_EQ(lane("lte_rrc.dl_ccch", "DL-CCCH, RRCConnectionSetup", downlink),
              page_lane::rrc_downlink);
    EXPECT_EQ(lane("lte_rrc.bcch_bch", "BCCH-BCH, MasterInformationBlock", downlink),
              page_lane::broadcast);
    EXPECT_EQ(lane("lte_rrc.pcch", "PCCH, Paging", downlink, message_event::paging),
              page_lane::paging);
    EXPECT_EQ(lane("ip", "IPv4 packet"), page_lane::ip);
    EXPECT_EQ(lane("other", "unknown message"), page_lane::other);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
