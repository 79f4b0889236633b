#include "replay/trace/profile_truth.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using role = setting_role;

setting told(const std::string& name, const std::string& value, std::string_view unit,
             setting_role whose) {
    return {name, value, unit, whose, ""};
}

class profile_truths : public testing::Test {
  protected:
    void tell(std::uint64_t record, const std::vector<setting>& settings) {
        settings_.add(record, 0, settings);
    }

    /// What stands beside a member that came from a record.
    profile_truth beside(const std::string& member, const std::string& value,
                         std::uint64_t record) const {
        const auto truths = truth_beside({{member, value}}, {{member, record}}, settings_);
        return truths.empty() ? profile_truth{} : truths.front();
    }

    std::vector<profile_truth> all_beside(const profile_content& profile,
                                          const std::map<std::string, std::uint64_t>& sources) {
        return truth_beside(profile, sources, settings_);
    }

  private:
    setting_history settings_;
};

/// SIB2 and the connection setup of an LTE-M cell, and a modem's timers.
class ltem_truths : public profile_truths {
  protected:
    ltem_truths() {
        tell(1, {told("default paging cycle", "1.28", "s", role::broadcast),
                 told("MPDCCH repetitions for paging", "16", "", role::broadcast)});
        tell(2, {told("long DRX cycle", "320", "ms", role::configured),
                 told("on-duration timer", "10", "PDCCH subframes", role::configured),
                 told("DRX inactivity timer", "100", "PDCCH subframes", role::configured)});
        tell(3, {told("T3324", "60", "s", role::requested),
                 told("T3412 extended", "3600", "s", role::requested)});
    }
};

TEST_F(ltem_truths, of_the_paging_cycle_and_repetitions_are_what_the_profile_says) {
    EXPECT_THAT(
        all_beside({{"idrx_int", "1.28"}, {"idrx_reps", "16"}},
                   {{"idrx_int", 1}, {"idrx_reps", 1}}),
        ElementsAre(
            testing::FieldsAre("idrx_int", "1.28", 1U, "default paging cycle 1.28 s", ""),
            testing::FieldsAre("idrx_reps", "16", 1U, "MPDCCH repetitions for paging 16", "")));
}

TEST_F(ltem_truths, of_the_drx_timers_are_what_the_profile_says) {
    EXPECT_EQ(beside("cdrx_on_duration", "10", 2).truth, "on-duration timer 10 PDCCH subframes");
    EXPECT_EQ(beside("cdrx_on_duration", "10", 2).difference, "");
    EXPECT_EQ(beside("cdrx_inactive_timer", "100", 2).truth,
              "DRX inactivity timer 100 PDCCH subframes");
    EXPECT_EQ(beside("cdrx_inactive_timer", "100", 2).difference, "");
}

TEST_F(ltem_truths, of_the_drx_cycle_differ) {
    const auto truth = beside("cdrx_int", "30", 2);
    EXPECT_EQ(truth.truth, "long DRX cycle 320 ms");
    EXPECT_EQ(truth.difference, "place in a table of timers, not milliseconds");
}

TEST_F(ltem_truths, of_the_octets_are_their_timers) {
    const auto active = beside("config_lte_psm_req_rat", "00100001", 3);
    EXPECT_EQ(active.truth, "T3324 60 s requested");
    EXPECT_EQ(active.difference, "");
    const auto periodic = beside("config_lte_psm_req_rptau", "00100001", 3);
    EXPECT_EQ(periodic.truth, "T3412 extended 3600 s requested");
    EXPECT_EQ(periodic.difference, "");
}

TEST_F(ltem_truths, of_the_octets_are_the_later_ones_of_requested_and_granted) {
    tell(4, {told("T3324", "10", "s", role::granted),
             told("T3412 extended", "252000", "s", role::granted)});
    EXPECT_EQ(beside("config_lte_psm_req_rat", "00000101", 4).truth, "T3324 10 s granted");
    EXPECT_EQ(beside("config_lte_psm_req_rptau", "01000111", 4).truth,
              "T3412 extended 252000 s granted");
    EXPECT_EQ(beside("config_lte_psm_req_rat", "00100001", 3).truth, "T3324 60 s requested");
    tell(5, {told("T3324", "120", "s", role::requested)});
    EXPECT_EQ(beside("config_lte_psm_req_rat", "00100010", 5).truth, "T3324 120 s requested");
}

TEST_F(ltem_truths, of_the_octets_are_the_later_ones_also_where_they_are_asked_for_again) {
    tell(4, {told("T3324", "10", "s", role::granted)});
    tell(5, {told("T3324", "60", "s", role::requested)});
    EXPECT_EQ(beside("config_lte_psm_req_rat", "00100001", 5).truth, "T3324 60 s requested");
}

TEST_F(ltem_truths, are_those_in_force_at_the_members_record) {
    tell(8, {told("default paging cycle", "2.56", "s", role::broadcast)});
    tell(9, {told("default paging cycle", "0.32", "s", role::broadcast)});
    EXPECT_EQ(beside("idrx_int", "1.28", 7).truth, "default paging cycle 1.28 s");
    EXPECT_EQ(beside("idrx_int", "2.56", 8).truth, "default paging cycle 2.56 s");
    EXPECT_EQ(beside("idrx_int", "0.32", 12).truth, "default paging cycle 0.32 s");
}

TEST_F(ltem_truths, have_the_members_value_and_record) {
    const auto truth = beside("idrx_int", "1.28", 7);
    EXPECT_EQ(truth.member, "idrx_int");
    EXPECT_EQ(truth.value, "1.28");
    EXPECT_EQ(truth.record, 7U);
}

TEST_F(ltem_truths, have_nothing_of_members_that_did_not_come_from_the_trace) {
    EXPECT_THAT(all_beside({{"idrx_int", "1.28"}, {"voltage", "3.7"}}, {{"idrx_int", 1}}),
                ElementsAre(Field(&profile_truth::member, "idrx_int")));
}

TEST_F(ltem_truths, of_psm_are_not_known) {
    const auto truth = beside("psm", "True", 3);
    EXPECT_EQ(truth.member, "psm");
    EXPECT_EQ(truth.truth, "");
    EXPECT_EQ(truth.difference, "");
}

TEST_F(profile_truths, of_a_narrowband_paging_cycle_differ) {
    tell(1, {told("default paging cycle", "2.56", "s", role::broadcast),
             told("NPDCCH repetitions for paging", "64", "", role::broadcast)});
    const auto cycle = beside("idrx_int", "0.64", 1);
    EXPECT_EQ(cycle.truth, "default paging cycle 2.56 s");
    EXPECT_EQ(cycle.difference, "a quarter of it: NB-IoT's cycles read as LTE's");
    const auto repetitions = beside("idrx_reps", "64", 1);
    EXPECT_EQ(repetitions.truth, "NPDCCH repetitions for paging 64");
    EXPECT_EQ(repetitions.difference, "");
}

TEST_F(profile_truths, of_numbers_do_not_depend_on_how_they_are_written) {
    tell(1, {told("default paging cycle", "2.560", "s", role::broadcast)});
    EXPECT_EQ(beside("idrx_int", "2.56", 1).difference, "");
}

TEST_F(profile_truths, of_a_word_differ_from_a_number) {
    tell(1, {told("on-duration timer", "16 ?", "", role::configured)});
    EXPECT_EQ(beside("cdrx_on_duration", "16", 1).difference, "not in that unit");
}

TEST_F(profile_truths, before_the_first_record_of_a_setting_are_not_known) {
    tell(5, {told("default paging cycle", "2.56", "s", role::broadcast)});
    EXPECT_EQ(beside("idrx_int", "2.56", 4).truth, "");
}

TEST_F(profile_truths, of_an_empty_profile_are_none) {
    EXPECT_THAT(all_beside({}, {{"idrx_int", 1}}), IsEmpty());
}

TEST_F(profile_truths, are_not_known_among_changes_that_were_not_kept) {
    for (std::uint64_t record = 1; record <= 200; ++record) {
        tell(record, {told("default paging cycle", std::to_string(record), "s", role::broadcast)});
    }
    EXPECT_EQ(beside("idrx_int", "1", 100).truth, "default paging cycle 100 s");
    EXPECT_EQ(beside("idrx_int", "1", 150).truth, "");
    EXPECT_EQ(beside("idrx_int", "1", 200).truth, "default paging cycle 200 s");
}

TEST_F(profile_truths, are_known_where_all_changes_were_kept) {
    for (std::uint64_t record = 1; record <= 101; ++record) {
        tell(10 * record,
             {told("default paging cycle", std::to_string(record), "s", role::broadcast)});
    }
    EXPECT_EQ(beside("idrx_int", "1", 1'005).truth, "default paging cycle 100 s");
    EXPECT_EQ(beside("idrx_int", "1", 1'010).truth, "default paging cycle 101 s");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
