#include "replay/trace/conclusions.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr auto requested = setting_role::requested;
constexpr auto granted = setting_role::granted;
constexpr auto broadcast = setting_role::broadcast;

class conclusions : public testing::Test {
  protected:
    /// Seconds, or words, in the next record.
    void tell(const std::string& name, setting_role role, const std::string& value) {
        tell_together({{name, value, unit_of(value), role, ""}});
    }

    /// What is granted comes in an accept.
    void tell_together(const std::vector<setting>& settings) {
        const bool is_accept = std::ranges::count(settings, granted, &setting::role) != 0;
        tell_in(is_accept ? registration_event::accept : registration_event::none, settings);
    }

    void tell_in(registration_event registration, const std::vector<setting>& settings = {}) {
        settings_.add(++record_, 0, settings);
        settings_.follow(record_, {.registration = registration, .access = access_});
    }

    void use(radio_access access) { access_ = access; }

    static setting seconds(const std::string& name, setting_role role, const std::string& value) {
        return {name, value, unit_of(value), role, ""};
    }

    std::vector<std::string> texts() const {
        std::vector<std::string> list;
        for (const auto& [text, record] : conclusions_of(settings_)) {
            list.push_back(text);
        }
        return list;
    }

    std::vector<conclusion> found() const { return conclusions_of(settings_); }

  private:
    static std::string_view unit_of(const std::string& value) {
        return value.find_first_not_of("0123456789.") == std::string::npos ? "s" : "";
    }

    setting_history settings_;
    std::uint64_t record_ = 0;
    radio_access access_ = radio_access::wb_s1;
};

TEST_F(conclusions, are_none_of_nothing) {
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(conclusions, are_none_of_settings_that_decide_nothing) {
    tell("T3412", granted, "3240");
    tell("T3402", granted, "720");
    tell("long DRX cycle", setting_role::configured, "320");
    EXPECT_THAT(found(), IsEmpty());
}

// Power saving mode

TEST_F(conclusions, give_the_sleep_of_t3412_extended) {
    tell("T3324", requested, "10");
    tell_together({seconds("T3412", granted, "3240"), seconds("T3412 extended", granted, "252000"),
                   seconds("T3324", granted, "10")});
    EXPECT_THAT(found(),
                ElementsAre(FieldsAre("PSM granted: after each release reachable for 10 s, which "
                                      "is T3324, then asleep for up to 251990 s (70 h): T3412 "
                                      "extended asks for a tracking area update every 252000 s "
                                      "(70 h).",
                                      2U)));
}

TEST_F(conclusions, give_the_sleep_of_t3412_without_the_extended_one) {
    tell_together({seconds("T3412", granted, "3240"), seconds("T3324", granted, "40")});
    EXPECT_THAT(texts(), ElementsAre("PSM granted: after each release reachable for 40 s, which is "
                                     "T3324, then asleep for up to 3200 s (53.3 min): T3412 asks "
                                     "for a tracking area update every 3240 s (54 min)."));
}

TEST_F(conclusions, give_no_sleep_where_the_update_comes_before_t3324_ends) {
    for (const char* period : {"120", "360"}) {
        tell_together({seconds("T3412", granted, period), seconds("T3324", granted, "360")});
        EXPECT_THAT(texts(), ElementsAre(HasSubstr(", and never asleep: T3412 asks for a tracking "
                                                   "area update every ")));
    }
}

TEST_F(conclusions, give_a_sleep_without_end_where_updates_are_deactivated) {
    for (const char* off : {"deactivated", "0"}) {
        tell_together({seconds("T3412", granted, off), seconds("T3324", granted, "120")});
        EXPECT_THAT(
            texts(),
            ElementsAre(HasSubstr(", then asleep until it has something to send: T3412 is ")));
    }
}

TEST_F(conclusions, take_t3412_where_the_extended_one_is_deactivated) {
    tell_together({seconds("T3412", granted, "3240"),
                   seconds("T3412 extended", granted, "deactivated"),
                   seconds("T3324", granted, "120")});
    EXPECT_THAT(texts(), ElementsAre(HasSubstr("asleep for up to 3120 s (52 min): T3412 asks")));
}

TEST_F(conclusions, give_no_sleep_where_no_timer_tells_it) {
    tell("T3324", granted, "10");
    EXPECT_THAT(texts(), ElementsAre("PSM granted: after each release reachable for 10 s, which is "
                                     "T3324."));
}

TEST_F(conclusions, tell_of_a_t3324_that_the_network_changed) {
    tell("T3324", requested, "60");
    tell("T3324", granted, "10");
    EXPECT_THAT(found(), testing::Contains(FieldsAre(
                             "The network changed T3324 from 60 s (requested) to 10 s.", 2U)));
}

TEST_F(conclusions, tell_of_a_t3412_extended_that_the_network_changed) {
    tell("T3412 extended", requested, "252000");
    tell_together({seconds("T3324", granted, "10"), seconds("T3412 extended", granted, "3600")});
    EXPECT_THAT(found(), testing::Contains(FieldsAre("The network changed T3412 extended from "
                                                     "252000 s (requested) to 3600 s.",
                                                     2U)));
}

TEST_F(conclusions, tell_of_a_t3412_extended_that_the_network_did_not_grant) {
    tell("T3412 extended", requested, "252000");
    tell_together({seconds("T3324", granted, "10"), seconds("T3412", granted, "3240")});
    EXPECT_THAT(found(), testing::Contains(FieldsAre(
                             "T3412 extended 252000 s was asked for, and not granted.", 1U)));
}

TEST_F(conclusions, tell_of_no_change_where_there_is_none) {
    tell("T3324", requested, "10");
    tell("T3324", granted, "10");
    EXPECT_THAT(texts(), SizeIs(1));
}

TEST_F(conclusions, tell_of_a_t3324_that_the_network_deactivates) {
    tell("T3324", requested, "60");
    tell_together({seconds("T3412", granted, "3240"), seconds("T3324", granted, "deactivated")});
    EXPECT_THAT(found(),
                ElementsAre(FieldsAre("PSM not granted: the network says T3324 deactivated.", 2U)));
}

TEST_F(conclusions, tell_of_an_accept_without_t3324) {
    tell("T3324", requested, "60");
    tell("T3412", granted, "3240");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("PSM not granted: asked for with T3324 60 s, and "
                                               "the accept has no T3324.",
                                               2U)));
}

TEST_F(conclusions, tell_of_an_accept_that_grants_nothing) {
    tell("T3324", requested, "60");
    tell_in(registration_event::accept);
    EXPECT_THAT(texts(), ElementsAre(HasSubstr("and the accept has no T3324.")));
}

TEST_F(conclusions, tell_of_a_request_that_is_rejected) {
    tell("T3324", requested, "60");
    tell_in(registration_event::reject);
    EXPECT_THAT(found(), ElementsAre(FieldsAre("PSM not granted: asked for with T3324 60 s, and "
                                               "then the network rejects the modem.",
                                               2U)));
}

TEST_F(conclusions, tell_of_a_request_without_an_accept) {
    tell("T3412", granted, "3240");
    tell("T3324", requested, "60");
    EXPECT_THAT(found(), ElementsAre(FieldsAre(
                             "PSM asked for with T3324 60 s; no accept is in the trace.", 2U)));
}

TEST_F(conclusions, tell_of_an_accept_without_t3324_that_is_like_the_one_before) {
    tell("T3412", granted, "3240");
    tell("T3324", requested, "60");
    tell("T3412", granted, "3240");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("PSM not granted: asked for with T3324 60 s, and "
                                               "the accept has no T3324.",
                                               3U)));
}

TEST_F(conclusions, tell_of_psm_that_the_last_accept_does_not_grant) {
    tell("T3324", requested, "60");
    tell_together({seconds("T3412", granted, "3240"), seconds("T3324", granted, "60")});
    tell("T3412", granted, "3240");
    EXPECT_THAT(found(),
                ElementsAre(FieldsAre("PSM has ended: the last accept has no T3324.", 3U)));
}

TEST_F(conclusions, tell_of_psm_that_an_accept_without_any_timer_does_not_grant) {
    tell_together({seconds("T3412", granted, "3240"), seconds("T3324", granted, "60")});
    tell_in(registration_event::accept);
    EXPECT_THAT(found(),
                ElementsAre(FieldsAre("PSM has ended: the last accept has no T3324.", 2U)));
}

TEST_F(conclusions, tell_of_what_was_granted_until_the_modem_was_rejected_or_detached) {
    tell_together({seconds("T3324", granted, "60")});
    tell_in(registration_event::reject);
    EXPECT_THAT(
        found(),
        ElementsAre(FieldsAre(HasSubstr("PSM granted: "), 1U),
                    FieldsAre("What was granted has ended: the network rejects the modem.", 2U)));
    tell_in(registration_event::detach);
    EXPECT_THAT(found(),
                ElementsAre(FieldsAre(HasSubstr("PSM granted: "), 1U),
                            FieldsAre("What was granted has ended: the modem is detached.", 3U)));
}

TEST_F(conclusions, tell_of_no_end_behind_a_new_accept) {
    tell_together({seconds("eDRX cycle", granted, "81.92")});
    tell_in(registration_event::detach);
    tell_together({seconds("eDRX cycle", granted, "81.92")});
    EXPECT_THAT(found(), ElementsAre(FieldsAre(HasSubstr("eDRX granted: "), 3U)));
}

TEST_F(conclusions, take_t3412_where_the_last_accept_has_no_extended_one) {
    tell_together({seconds("T3412", granted, "3240"), seconds("T3412 extended", granted, "252000"),
                   seconds("T3324", granted, "40")});
    tell_together({seconds("T3412", granted, "3240"), seconds("T3324", granted, "40")});
    EXPECT_THAT(texts(), ElementsAre(HasSubstr("asleep for up to 3200 s (53.3 min): T3412 asks")));
}

TEST_F(conclusions, tell_of_t3412_extended_that_was_asked_for_alone) {
    tell("T3412 extended", requested, "3600");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("PSM not asked for: T3412 extended alone, without "
                                               "T3324, asks for none.",
                                               1U)));
}

TEST_F(conclusions, do_not_take_a_deactivated_t3324_for_a_request) {
    tell("T3324", requested, "deactivated");
    tell("T3412", granted, "3240");
    EXPECT_THAT(found(), ElementsAre(FieldsAre(
                             "PSM not asked for: T3324 is deactivated in the request.", 1U)));
}

// eDRX

TEST_F(conclusions, tell_of_edrx) {
    tell("eDRX cycle", requested, "81.92");
    tell("eDRX cycle", granted, "81.92");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("eDRX granted: paged once in 81.92 s, within its "
                                               "paging time window.",
                                               2U)));
}

TEST_F(conclusions, tell_of_the_shortest_edrx_as_a_paging_cycle) {
    tell("default paging cycle", broadcast, "1.28");
    tell_together(
        {seconds("eDRX cycle", granted, "5.12"), seconds("paging time window", granted, "1.28")});
    EXPECT_THAT(texts(), ElementsAre("eDRX granted: paged once in 5.12 s, which is the paging "
                                     "cycle, without a paging time window."));
}

TEST_F(conclusions, tell_of_edrx_that_the_network_changed) {
    tell_together({seconds("eDRX cycle", requested, "20.48"),
                   seconds("paging time window", requested, "2.56")});
    tell_together(
        {seconds("eDRX cycle", granted, "81.92"), seconds("paging time window", granted, "1.28")});
    EXPECT_THAT(
        texts(),
        ElementsAre(HasSubstr("eDRX granted"),
                    "The network changed eDRX cycle from 20.48 s (requested) to 81.92 s.",
                    "The network changed paging time window from 2.56 s (requested) to 1.28 s."));
}

TEST_F(conclusions, tell_of_edrx_that_was_not_granted) {
    tell("eDRX cycle", requested, "81.92");
    EXPECT_THAT(found(), ElementsAre(FieldsAre(
                             "eDRX asked for (81.92 s), and not granted in the trace.", 1U)));
}

TEST_F(conclusions, tell_of_edrx_that_the_last_accept_does_not_grant) {
    tell("default paging cycle", broadcast, "1.28");
    tell_together({seconds("T3412", granted, "3240"), seconds("eDRX cycle", granted, "81.92")});
    tell("T3412", granted, "3240");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("eDRX has ended: the last accept grants none.", 3U),
                                     FieldsAre("The paging cycle is the cell's, 1.28 s.", 1U)));
}

TEST_F(conclusions, do_not_rest_on_a_cycle_whose_meaning_is_not_known) {
    auto unclear = seconds("eDRX cycle", granted, "81.92");
    unclear.known = false;
    tell_together({unclear});
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(conclusions, tell_that_edrx_fits_into_t3324) {
    tell_together({seconds("T3324", granted, "20.48"), seconds("eDRX cycle", granted, "20.48")});
    EXPECT_THAT(found(), testing::Contains(FieldsAre(
                             "PSM and eDRX go together: the eDRX cycle fits into T3324.", 1U)));
}

TEST_F(conclusions, tell_that_edrx_does_not_fit_into_t3324) {
    tell_together({seconds("T3324", granted, "20"), seconds("eDRX cycle", granted, "20.48")});
    EXPECT_THAT(texts(), testing::Contains("PSM and eDRX together: T3324 ends before an eDRX cycle "
                                           "does, so a modem that sleeps may never be paged."));
}

TEST_F(conclusions, tell_of_a_cell_that_does_not_allow_edrx) {
    tell("eDRX cycle", granted, "81.92");
    tell("cell barred", broadcast, "not barred");
    tell("default paging cycle", broadcast, "1.28");
    EXPECT_THAT(found(), testing::Contains(FieldsAre("The cell does not broadcast that eDRX is "
                                                     "allowed: the modem may not use it there.",
                                                     2U)));
}

TEST_F(conclusions, need_no_cell_that_allows_edrx_in_nb_iot) {
    use(radio_access::nb_s1);
    tell("eDRX cycle", granted, "81.92");
    tell("cell barred", broadcast, "not barred");
    tell("default paging cycle", broadcast, "1.28");
    EXPECT_THAT(texts(), Not(testing::Contains(HasSubstr("does not broadcast"))));
}

TEST_F(conclusions, tell_of_a_cell_that_does_not_allow_the_edrx_that_another_one_did) {
    tell("eDRX cycle", granted, "81.92");
    tell("default paging cycle", broadcast, "1.28");
    const setting barred{"cell barred", "not barred", "", broadcast, ""};
    tell_together({barred,
                   {"cell identity", "0000001", "", broadcast, ""},
                   {"eDRX allowed", "yes", "", broadcast, ""}});
    EXPECT_THAT(texts(), Not(testing::Contains(HasSubstr("does not broadcast"))));
    tell_together({barred, {"cell identity", "0000002", "", broadcast, ""}});
    EXPECT_THAT(texts(), testing::Contains(HasSubstr("does not broadcast")));
}

TEST_F(conclusions, do_not_speak_for_a_cell_whose_sib1_is_not_in_the_trace) {
    tell("eDRX cycle", granted, "81.92");
    tell("default paging cycle", broadcast, "1.28");
    EXPECT_THAT(texts(), Not(testing::Contains(HasSubstr("does not broadcast"))));
}

TEST_F(conclusions, do_not_speak_for_a_cell_whose_sib2_is_not_in_the_trace) {
    tell("eDRX cycle", granted, "81.92");
    tell("cell barred", broadcast, "not barred");
    EXPECT_THAT(texts(), SizeIs(1));
}

TEST_F(conclusions, have_nothing_against_a_cell_that_allows_edrx) {
    tell("eDRX cycle", granted, "81.92");
    tell_together({{"cell barred", "not barred", "", broadcast, ""},
                   {"eDRX allowed", "yes", "", broadcast, ""}});
    tell("default paging cycle", broadcast, "1.28");
    EXPECT_THAT(texts(), Not(testing::Contains(HasSubstr("does not broadcast"))));
}

// The paging cycle

TEST_F(conclusions, take_the_cells_paging_cycle) {
    tell("default paging cycle", broadcast, "1.28");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("The paging cycle is the cell's, 1.28 s.", 1U)));
}

TEST_F(conclusions, take_the_cells_paging_cycle_within_edrx) {
    tell("default paging cycle", broadcast, "1.28");
    tell("eDRX cycle", granted, "81.92");
    EXPECT_THAT(texts(),
                testing::Contains("The paging cycle is the cell's, 1.28 s, within eDRX's window."));
}

TEST_F(conclusions, take_the_modems_own_paging_cycle_where_it_is_shorter) {
    tell("default paging cycle", broadcast, "1.28");
    tell("UE-specific DRX cycle", requested, "0.64");
    EXPECT_THAT(found(), ElementsAre(FieldsAre("The paging cycle is the modem's own, 0.64 s: it is "
                                               "shorter than the cell's 1.28 s.",
                                               2U)));
}

TEST_F(conclusions, take_the_modems_own_paging_cycle_in_nb_iot_where_the_cell_allows_it) {
    use(radio_access::nb_s1);
    tell("default paging cycle", broadcast, "5.12");
    tell("UE-specific DRX cycle in NB-S1 mode", granted, "1.28");
    EXPECT_THAT(texts(), ElementsAre("The paging cycle is the cell's, 5.12 s."));
    tell("least UE-specific DRX cycle", broadcast, "0.32");
    EXPECT_THAT(texts(), ElementsAre("The paging cycle is the modem's own, 1.28 s: it is shorter "
                                     "than the cell's 5.12 s."));
    tell("least UE-specific DRX cycle", broadcast, "2.56");
    EXPECT_THAT(texts(), ElementsAre("The paging cycle is the least that the cell allows modems, "
                                     "2.56 s: it is shorter than the cell's 5.12 s."));
    tell_in(registration_event::accept);
    EXPECT_THAT(texts(), ElementsAre("The paging cycle is the cell's, 5.12 s."));
}

TEST_F(conclusions, do_not_take_the_drx_parameter_of_lte_in_nb_iot) {
    use(radio_access::nb_s1);
    tell("default paging cycle", broadcast, "5.12");
    tell("UE-specific DRX cycle", requested, "0.32");
    EXPECT_THAT(texts(), ElementsAre("The paging cycle is the cell's, 5.12 s."));
}

TEST_F(conclusions, take_the_cells_paging_cycle_where_the_modems_own_is_no_shorter) {
    tell("default paging cycle", broadcast, "1.28");
    tell("UE-specific DRX cycle", requested, "1.28");
    EXPECT_THAT(texts(), ElementsAre(HasSubstr("is the cell's")));
    tell("UE-specific DRX cycle", requested, "not specified");
    EXPECT_THAT(texts(), ElementsAre(HasSubstr("is the cell's")));
}

TEST(readable_durations, are_in_seconds_alone_below_two_minutes) {
    EXPECT_EQ(readable_seconds(0), "0 s");
    EXPECT_EQ(readable_seconds(1.28), "1.28 s");
    EXPECT_EQ(readable_seconds(119.999), "119.999 s");
}

TEST(readable_durations, have_minutes_hours_or_days_beside) {
    EXPECT_EQ(readable_seconds(120), "120 s (2 min)");
    EXPECT_EQ(readable_seconds(163.84), "163.84 s (2.7 min)");
    EXPECT_EQ(readable_seconds(7140), "7140 s (119 min)");
    EXPECT_EQ(readable_seconds(7200), "7200 s (2 h)");
    EXPECT_EQ(readable_seconds(252000), "252000 s (70 h)");
    EXPECT_EQ(readable_seconds(345600), "345600 s (4 d)");
    EXPECT_EQ(readable_seconds(35712000), "35712000 s (413.3 d)");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
