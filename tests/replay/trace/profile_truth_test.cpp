#include "replay/trace/profile_truth.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::Field;
using testing::FieldsAre;
using testing::IsEmpty;
using role = setting_role;

setting told(const std::string& name, const std::string& value, std::string_view unit,
             setting_role whose) {
    return {name, value, unit, whose, ""};
}

setting active_time(const std::string& value, setting_role whose) {
    return told("T3324", value, "s", whose);
}

setting periodic_timer(const std::string& value, setting_role whose) {
    return told("T3412 extended", value, "s", whose);
}

/// The results of records with these values of the profile, as texts.
json rrc(const json& members) {
    return {{"lte-rrc", members}};
}

json drx(const std::string& cycle) {
    return rrc({{"cdrx_int", cycle}});
}

/// @param active_time,periodic octets; empty for none
json timers(const std::string& active_time, const std::string& periodic) {
    json members = json::object();
    if (!active_time.empty()) {
        members["gprs_timer_2_T3324_value"] = {{"bitmask", active_time}};
    }
    if (!periodic.empty()) {
        members["gprs_timer_3_T3412_extended_value"] = {{"bitmask", periodic}};
    }
    return {{"nas-eps", members}};
}

class profile_truths : public testing::Test {
  protected:
    void tell(std::uint64_t record, const std::vector<setting>& settings,
              const json& result = nullptr) {
        settings_.add(record, 0, settings);
        sources_.follow(record, result, settings_);
    }

    /// SIB2, which a profile is written with.
    void tell_paging(std::uint64_t record, const std::string& cycle = "1.28") {
        tell(record,
             {told("default paging cycle", cycle, "s", role::broadcast),
              told("MPDCCH repetitions for paging", "16", "", role::broadcast)},
             rrc({{"idrx_int", cycle}, {"idrx_reps", "16"}}));
    }

    std::vector<profile_truth> all_beside(const profile_content& profile) const {
        return truth_beside(profile, sources_, settings_);
    }

    profile_truth beside(const std::string& member, const std::string& value) const {
        const auto truths = all_beside({{member, value}});
        return truths.empty() ? profile_truth{} : truths.front();
    }

    /// Record, truth and difference.
    testing::Matcher<profile_truth> is(std::uint64_t record, const std::string& truth,
                                       const std::string& difference) const {
        return testing::AllOf(Field("record", &profile_truth::record, record),
                              Field("truth", &profile_truth::truth, truth),
                              Field("difference", &profile_truth::difference, difference));
    }

  private:
    setting_history settings_;
    profile_sources sources_;
};

TEST_F(profile_truths, have_the_members_values_and_records) {
    tell_paging(7);
    EXPECT_THAT(
        all_beside({{"idrx_int", "1.28"}, {"idrx_reps", "16"}}),
        ElementsAre(FieldsAre("idrx_int", "1.28", 7U, "default paging cycle 1.28 s", ""),
                    FieldsAre("idrx_reps", "16", 7U, "MPDCCH repetitions for paging 16", "")));
}

TEST_F(profile_truths, of_the_drx_timers_are_what_the_profile_says) {
    tell(1,
         {told("on-duration timer", "10", "PDCCH subframes", role::configured),
          told("DRX inactivity timer", "100", "PDCCH subframes", role::configured)},
         rrc({{"cdrx_on_duration", "10"}, {"cdrx_inactive_timer", "100"}}));
    tell_paging(2);
    EXPECT_THAT(beside("cdrx_on_duration", "10"),
                is(1, "on-duration timer 10 PDCCH subframes", ""));
    EXPECT_THAT(beside("cdrx_inactive_timer", "100"),
                is(1, "DRX inactivity timer 100 PDCCH subframes", ""));
}

TEST_F(profile_truths, of_the_drx_cycle_differ) {
    tell(1, {told("long DRX cycle", "320", "ms", role::configured)}, drx("30"));
    tell_paging(2);
    EXPECT_THAT(beside("cdrx_int", "30"),
                is(1, "long DRX cycle 320 ms", "place in a table of timers, not milliseconds"));
}

TEST_F(profile_truths, of_a_narrowband_paging_cycle_differ) {
    tell(1,
         {told("default paging cycle", "2.56", "s", role::broadcast),
          told("NPDCCH repetitions for paging", "64", "", role::broadcast)},
         rrc({{"idrx_int", "0.64"}, {"idrx_reps", "64"}}));
    EXPECT_THAT(beside("idrx_int", "0.64"), is(1, "default paging cycle 2.56 s",
                                               "a quarter of it: NB-IoT's cycles read as LTE's"));
    EXPECT_THAT(beside("idrx_reps", "64"), is(1, "NPDCCH repetitions for paging 64", ""));
}

TEST_F(profile_truths, of_numbers_do_not_depend_on_how_they_are_written) {
    tell_paging(1, "2.560");
    EXPECT_THAT(beside("idrx_int", "2.56"), is(1, "default paging cycle 2.560 s", ""));
}

TEST_F(profile_truths, of_a_word_differ_from_a_number) {
    tell(1, {told("on-duration timer", "16 ?", "", role::configured)},
         rrc({{"cdrx_on_duration", "16"}}));
    tell_paging(2);
    EXPECT_EQ(beside("cdrx_on_duration", "16").difference, "not in that unit");
}

TEST_F(profile_truths, are_those_of_the_members_record) {
    tell_paging(1, "1.28");
    tell(2, {told("default paging cycle", "2.56", "s", role::broadcast)});
    EXPECT_EQ(beside("idrx_int", "1.28").truth, "default paging cycle 1.28 s");
}

TEST_F(profile_truths, are_not_known_of_a_record_without_the_setting) {
    tell_paging(1);
    tell(2, {}, rrc({{"idrx_int", "2.56"}, {"idrx_reps", "16"}}));
    EXPECT_THAT(beside("idrx_int", "2.56"), is(2, "", ""));
}

TEST_F(profile_truths, of_the_octets_are_their_timers) {
    tell(1, {active_time("60", role::requested), periodic_timer("3600", role::requested)},
         timers("00100001", "00100001"));
    tell_paging(2);
    EXPECT_THAT(beside("config_lte_psm_req_rat", "00100001"), is(1, "T3324 60 s requested", ""));
    EXPECT_THAT(beside("config_lte_psm_req_rptau", "00100001"),
                is(1, "T3412 extended 3600 s requested", ""));
}

TEST_F(profile_truths, of_the_octets_are_the_later_ones_of_requested_and_granted) {
    tell(1, {active_time("60", role::requested), periodic_timer("3600", role::requested)},
         timers("00100001", "00100001"));
    tell(2, {active_time("10", role::granted), periodic_timer("252000", role::granted)},
         timers("00000101", "01000111"));
    tell_paging(3);
    EXPECT_THAT(beside("config_lte_psm_req_rat", "00000101"), is(2, "T3324 10 s granted", ""));
    EXPECT_THAT(beside("config_lte_psm_req_rptau", "01000111"),
                is(2, "T3412 extended 252000 s granted", ""));
}

TEST_F(profile_truths, of_the_octets_are_the_later_ones_also_where_they_are_asked_for_again) {
    const auto ask = [this](std::uint64_t record) {
        tell(record, {active_time("60", role::requested), periodic_timer("600", role::requested)},
             timers("00100001", "00000001"));
    };
    ask(1);
    tell(2, {active_time("10", role::granted)}, timers("00000101", ""));
    tell_paging(3);
    ask(4);
    tell_paging(5);
    EXPECT_THAT(beside("config_lte_psm_req_rat", "00100001"), is(4, "T3324 60 s requested", ""));
    ask(6);
    EXPECT_THAT(beside("config_lte_psm_req_rat", "00100001"), is(4, "T3324 60 s requested", ""));
}

TEST_F(profile_truths, of_psm_are_whether_it_is_granted) {
    tell(1, {active_time("60", role::requested), periodic_timer("600", role::requested)},
         timers("00100001", "00000001"));
    tell(2, {active_time("10", role::granted)}, timers("00000101", ""));
    tell_paging(3);
    EXPECT_THAT(beside("psm", "True"), is(2, "PSM granted: T3324 10 s", ""));
    tell(4, {told("T3324", "deactivated", "", role::granted)});
    EXPECT_THAT(beside("psm", "True"), is(2, "PSM granted: T3324 10 s", ""));
}

TEST_F(profile_truths, of_psm_differ_where_it_is_asked_for_alone) {
    tell(1, {active_time("60", role::requested), periodic_timer("600", role::requested)},
         timers("00100001", "00000001"));
    tell_paging(2);
    EXPECT_THAT(beside("psm", "True"),
                is(1, "PSM not granted", "True wherever both timers are told"));
}

TEST_F(profile_truths, of_psm_differ_where_its_timer_is_deactivated) {
    tell(1, {told("T3324", "deactivated", "", role::granted), periodic_timer("600", role::granted)},
         timers("11100000", "00000001"));
    tell_paging(2);
    EXPECT_THAT(beside("psm", "True"),
                is(1, "PSM not granted", "True wherever both timers are told"));
}

TEST_F(profile_truths, of_psm_differ_where_its_timer_has_no_known_value) {
    auto odd = active_time("60", role::granted);
    odd.known = false;
    tell(1, {odd, periodic_timer("600", role::granted)}, timers("00100001", "00000001"));
    tell_paging(2);
    EXPECT_EQ(beside("psm", "True").truth, "PSM not granted");
}

TEST_F(profile_truths, of_psm_differ_where_one_timer_alone_grants_it) {
    tell(1, {active_time("60", role::granted)}, timers("00100001", ""));
    tell_paging(2);
    EXPECT_THAT(beside("psm", "False"), is(1, "PSM granted: T3324 60 s", "granted all the same"));
}

TEST_F(profile_truths, of_psm_are_none_where_nothing_grants_it) {
    tell(1, {active_time("60", role::requested)}, timers("00100001", ""));
    tell_paging(2);
    EXPECT_THAT(all_beside({{"psm", "False"}}), IsEmpty());
}

TEST_F(profile_truths, of_one_timer_alone_differ) {
    tell_paging(1);
    tell(2, {active_time("60", role::granted)}, timers("00100001", ""));
    tell_paging(3);
    EXPECT_THAT(
        beside("config_lte_psm_req_rat", "00000000"),
        is(2, "T3324 60 s granted", "at its default: the profile takes both timers or none"));
}

TEST_F(profile_truths, of_members_that_the_profile_never_takes_differ) {
    tell(1, {told("eDRX cycle", "20.48", "s", role::requested)});
    tell(2, {told("eDRX cycle", "81.92", "s", role::granted)});
    tell(3, {periodic_timer("252000", role::granted)}, timers("", "01000111"));
    tell_paging(4);
    const std::string never = "at its default: the profile never takes it";
    EXPECT_THAT(beside("config_lte_edrx_req_value", "0000"),
                is(2, "eDRX cycle 81.92 s granted", never));
    EXPECT_THAT(beside("psm_int", "3600"), is(3, "T3412 extended 252000 s granted", never));
}

TEST_F(profile_truths, of_messages_that_the_profile_does_not_read_differ) {
    tell(1, {told("long DRX cycle", "2048", "ms", role::configured),
             told("on-duration timer", "8", "PDCCH periods", role::configured),
             told("DRX inactivity timer", "32", "PDCCH periods", role::configured)});
    tell_paging(2);
    const std::string not_there = "at its default: the profile does not take it from that message";
    EXPECT_THAT(beside("cdrx_int", "0"), is(1, "long DRX cycle 2048 ms", not_there));
    EXPECT_THAT(beside("cdrx_on_duration", "0"),
                is(1, "on-duration timer 8 PDCCH periods", not_there));
    EXPECT_THAT(beside("cdrx_inactive_timer", "0"),
                is(1, "DRX inactivity timer 32 PDCCH periods", not_there));
}

TEST_F(profile_truths, of_a_later_message_that_the_profile_does_not_read_differ) {
    tell(1, {told("long DRX cycle", "320", "ms", role::configured)}, drx("30"));
    tell_paging(2);
    tell(3, {told("long DRX cycle", "2048", "ms", role::configured)});
    tell_paging(4);
    EXPECT_THAT(beside("cdrx_int", "0"),
                is(3, "long DRX cycle 2048 ms",
                   "at its default: the profile does not take it from that message"));
}

TEST_F(profile_truths, of_what_is_told_after_the_profile_differ) {
    tell_paging(1);
    tell(2, {told("long DRX cycle", "320", "ms", role::configured)}, drx("30"));
    EXPECT_THAT(beside("cdrx_int", "0"), is(2, "long DRX cycle 320 ms",
                                            "at its default: told after the profile was written"));
}

TEST_F(profile_truths, of_what_went_into_an_earlier_profile_differ) {
    tell(1, {told("long DRX cycle", "320", "ms", role::configured)}, drx("30"));
    tell_paging(2);
    tell_paging(3);
    EXPECT_THAT(beside("cdrx_int", "0"),
                is(1, "long DRX cycle 320 ms", "at its default: told before an earlier profile"));
}

TEST_F(profile_truths, are_none_of_members_that_the_trace_does_not_tell_of) {
    tell_paging(1);
    EXPECT_THAT(all_beside({{"cdrx_int", "0"}, {"idrx_int", "1.28"}, {"voltage", "3.7"}}),
                ElementsAre(Field(&profile_truth::member, "idrx_int")));
}

TEST_F(profile_truths, of_an_empty_profile_are_none) {
    tell_paging(1);
    EXPECT_THAT(all_beside({}), IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
