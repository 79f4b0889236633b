#include "replay/fleet/fleet_row.h"

#include <string>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::Each;

fleet_row row_without_summary(int status, const std::string& error = "") {
    return row_of("a.pcap", {.exit_status = status, .error = error, .summary = {}});
}

TEST(fleet_row, has_a_cell_for_each_column) {
    EXPECT_EQ(row_without_summary(2).size(), fleet_columns().size());
}

TEST(fleet_row, has_nothing_but_the_failure_without_a_summary) {
    auto row = row_without_summary(2, "can't read a.pcap");
    EXPECT_EQ(cell_of(row, "capture"), "a.pcap");
    EXPECT_EQ(cell_of(row, "status"), "unreadable");
    EXPECT_EQ(cell_of(row, "error"), "can't read a.pcap");
    row.erase(row.begin(), row.begin() + 3);
    EXPECT_THAT(row, Each(std::string()));
}

TEST(fleet_row, tells_of_a_process_that_ended_in_another_way) {
    const auto row = row_without_summary(139);
    EXPECT_EQ(cell_of(row, "status"), "crashed");
    EXPECT_EQ(cell_of(row, "error"), "ended with status 139");
}

class fleet_row_of_summary : public testing::Test {
  protected:
    /// @param unit, record of the value in force
    json& tell(const char* name, const char* role, const char* value, const char* unit = "",
               int record = 1) {
        auto& settings = summary_["settings"];
        settings.push_back({{"name", name},
                            {"role", role},
                            {"in_force", {{"value", value}, {"unit", unit}, {"record", record}}}});
        return settings.back();
    }

    std::string cell(const char* column, int status = 0) const {
        return cell_of(row_of("a.pcap", {.exit_status = status, .error = {}, .summary = summary_}),
                       column);
    }

    json summary_{{"records", {{"records", 2}}},
                  {"settings", json::array()},
                  {"registration", json::object()},
                  {"messages", json::object()}};
};

TEST_F(fleet_row_of_summary, has_a_status_by_the_exit_status_and_the_records) {
    EXPECT_EQ(cell("status", 0), "ok");
    EXPECT_EQ(cell("status", 1), "records failed");
    EXPECT_EQ(cell("status", 2), "broken off");
    summary_["records"]["records"] = 0;
    EXPECT_EQ(cell("status", 1), "no records");
    EXPECT_EQ(cell("status", 2), "unreadable");
}

TEST_F(fleet_row_of_summary, has_the_operator_that_was_granted_before_that_of_the_cell) {
    tell("operator", "broadcast", "001/01 Lab");
    EXPECT_EQ(cell("mcc_mnc"), "001/01");
    tell("operator", "granted", "262/02 Vodafone D2 GmbH, Germany");
    EXPECT_EQ(cell("mcc_mnc"), "262/02");
    EXPECT_EQ(cell("operator"), "Vodafone D2 GmbH, Germany");
}

TEST_F(fleet_row_of_summary, leaves_out_values_whose_meaning_is_not_known) {
    tell("APN", "granted", "iot")["in_force"]["known"] = false;
    EXPECT_EQ(cell("apn"), "");
}

TEST_F(fleet_row_of_summary, has_timers_in_the_unit_of_their_column) {
    tell("on-duration timer", "configured", "8", "PDCCH periods");
    EXPECT_EQ(cell("drx_on_duration_subframes"), "");
    EXPECT_EQ(cell("drx_on_duration_periods"), "8");
}

TEST_F(fleet_row_of_summary, leaves_out_drx_that_was_released) {
    tell("long DRX cycle", "configured", "320", "ms");
    EXPECT_EQ(cell("drx_long_cycle_ms"), "320");
    tell("connected-mode DRX", "configured", "released");
    EXPECT_EQ(cell("drx_long_cycle_ms"), "");
}

TEST_F(fleet_row_of_summary, leaves_out_what_a_later_accept_does_not_grant) {
    tell("T3324", "granted", "10", "s")["ended_in"] = 5;
    summary_["registration"]["accepted_in"] = 5;
    EXPECT_EQ(cell("psm"), "ended");
    EXPECT_EQ(cell("t3324_granted_s"), "");
}

TEST_F(fleet_row_of_summary, has_what_was_granted_until_the_registration_ended) {
    tell("T3324", "granted", "10", "s")["ended_in"] = 5;
    summary_["registration"]["accepted_in"] = 4;
    EXPECT_EQ(cell("psm"), "granted");
    EXPECT_EQ(cell("t3324_granted_s"), "10");
}

TEST_F(fleet_row_of_summary, takes_an_accept_behind_the_request_alone_for_its_answer) {
    tell("T3324", "requested", "10", "s", 4);
    summary_["registration"]["accepted_in"] = 3;
    EXPECT_EQ(cell("psm"), "no answer");
    summary_["registration"]["accepted_in"] = 5;
    EXPECT_EQ(cell("psm"), "not granted");
}

TEST_F(fleet_row_of_summary, has_the_paging_repetitions_of_lte_m_and_nb_iot) {
    tell("NPDCCH repetitions for paging", "broadcast", "64");
    EXPECT_EQ(cell("paging_repetitions"), "64");
    tell("MPDCCH repetitions for paging", "broadcast", "16");
    EXPECT_EQ(cell("paging_repetitions"), "16");
}

TEST_F(fleet_row_of_summary, counts_area_updates_whatever_else_their_messages_hold) {
    summary_["messages"] = {{"Tracking area update request", 1},
                            {"Tracking area update request, ESM message container", 2},
                            {"Tracking area update accept", 4}};
    EXPECT_EQ(cell("area_updates"), "3");
}

TEST(fleet_row, ends_with_the_page) {
    auto row = row_of("lab/a.pcap", {.exit_status = 0, .error = {}, .summary = {}});
    EXPECT_EQ(fleet_columns().back(), "page");
    EXPECT_EQ(row.back(), "");
    set_page(row, "lab/a.pcap.html");
    EXPECT_EQ(row.back(), "lab/a.pcap.html");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
