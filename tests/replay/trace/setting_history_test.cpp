#include "replay/trace/setting_history.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto granted = setting_role::granted;
constexpr auto requested = setting_role::requested;

setting timer(const std::string& value, setting_role role = granted) {
    return {"T3324", value, "s", role, "24.008, 10.5.7.4"};
}

setting barred(const std::string& text) {
    return {"cell barred", text, "", setting_role::broadcast, "36.331, 6.2.2"};
}

/// The records and values of changes.
auto change(std::uint64_t record, const std::string& value) {
    return testing::AllOf(Field(&setting_change::record, record),
                          Field(&setting_change::value, value));
}

const setting_entry& entry_of(const setting_history& history, const char* name, setting_role role) {
    const auto* const entry = history.find(name, role);
    if (entry == nullptr) {
        throw std::runtime_error(std::string("no ") + name);
    }
    return *entry;
}

TEST(setting_histories, have_nothing_at_first) {
    const setting_history history;
    EXPECT_THAT(history.entries(), IsEmpty());
    EXPECT_EQ(history.find("T3324", granted), nullptr);
}

TEST(setting_histories, keep_a_value_with_its_record_time_unit_and_clause) {
    setting_history history;
    history.add(7, 1'700'000'000'000'000, {timer("10")});
    const auto& entry = entry_of(history, "T3324", granted);
    EXPECT_EQ(entry.name, "T3324");
    EXPECT_EQ(entry.role, granted);
    EXPECT_EQ(entry.clause, "24.008, 10.5.7.4");
    EXPECT_EQ(entry.changes, 1U);
    EXPECT_EQ(entry.last.record, 7U);
    EXPECT_EQ(entry.last.timestamp, 1'700'000'000'000'000U);
    EXPECT_EQ(entry.last.value, "10");
    EXPECT_EQ(entry.last.unit, "s");
    EXPECT_TRUE(entry.last.known);
    EXPECT_THAT(entry.first, ElementsAre(change(7, "10")));
}

TEST(setting_histories, note_changes_and_no_repetitions) {
    setting_history history;
    history.add(1, 0, {timer("10")});
    history.add(2, 0, {timer("10")});
    history.add(3, 0, {timer("20")});
    history.add(4, 0, {timer("20")});
    history.add(5, 0, {timer("10")});
    const auto& entry = entry_of(history, "T3324", granted);
    EXPECT_EQ(entry.changes, 3U);
    EXPECT_THAT(entry.first, ElementsAre(change(1, "10"), change(3, "20"), change(5, "10")));
}

TEST(setting_histories, know_the_last_record_of_a_setting_also_without_a_change) {
    setting_history history;
    history.add(1, 0, {timer("10"), timer("60", requested)});
    history.add(2, 0, {timer("10")});
    EXPECT_EQ(entry_of(history, "T3324", granted).last_record, 2U);
    EXPECT_THAT(entry_of(history, "T3324", granted).last, change(1, "10"));
    EXPECT_EQ(entry_of(history, "T3324", requested).last_record, 1U);
}

TEST(setting_histories, tell_the_value_in_force) {
    setting_history history;
    history.add(1, 0, {timer("10")});
    history.add(3, 0, {timer("20")});
    history.add(4, 0, {barred("barred")});
    EXPECT_THAT(entry_of(history, "T3324", granted).last, change(3, "20"));
}

TEST(setting_histories, take_another_unit_for_a_change) {
    setting_history history;
    history.add(1, 0, {timer("7")});
    auto reserved = timer("7");
    reserved.unit = "";
    history.add(2, 0, {reserved});
    EXPECT_EQ(entry_of(history, "T3324", granted).changes, 2U);
}

TEST(setting_histories, keep_requested_and_granted_apart) {
    setting_history history;
    history.add(1, 0, {timer("60", requested)});
    history.add(2, 0, {timer("10", granted)});
    EXPECT_THAT(entry_of(history, "T3324", requested).last, change(1, "60"));
    EXPECT_THAT(entry_of(history, "T3324", granted).last, change(2, "10"));
}

TEST(setting_histories, join_the_values_of_a_name_in_one_record) {
    setting_history history;
    history.add(1, 0, {timer("10"), barred("barred"), timer("20"), timer("30", requested)});
    EXPECT_EQ(entry_of(history, "T3324", granted).last.value, "10, 20");
    EXPECT_EQ(entry_of(history, "T3324", granted).changes, 1U);
    EXPECT_EQ(entry_of(history, "T3324", requested).last.value, "30");
    history.add(2, 0, {timer("10"), timer("20")});
    EXPECT_EQ(entry_of(history, "T3324", granted).changes, 1U);
}

TEST(setting_histories, know_joined_values_if_they_know_each) {
    setting_history history;
    auto reserved = timer("31");
    reserved.known = false;
    history.add(1, 0, {timer("10"), reserved});
    EXPECT_FALSE(entry_of(history, "T3324", granted).last.known);
}

TEST(setting_histories, are_in_the_order_in_which_settings_came_up) {
    setting_history history;
    history.add(1, 0, {timer("10")});
    history.add(2, 0, {barred("barred")});
    history.add(3, 0, {timer("10", requested), timer("20")});
    EXPECT_THAT(history.entries(), ElementsAre(Field(&setting_entry::role, granted),
                                               Field(&setting_entry::name, "cell barred"),
                                               Field(&setting_entry::role, requested)));
}

TEST(setting_histories, keep_the_first_hundred_changes_and_the_last) {
    setting_history history;
    for (std::uint64_t record = 1; record <= 1000; ++record) {
        history.add(record, 0, {timer(std::to_string(record))});
    }
    const auto& entry = entry_of(history, "T3324", granted);
    EXPECT_EQ(entry.changes, 1000U);
    EXPECT_THAT(entry.first, SizeIs(100));
    EXPECT_THAT(entry.first.back(), change(100, "100"));
    EXPECT_THAT(entry.last, change(1000, "1000"));
}

TEST(setting_histories, keep_five_hundred_settings_and_go_on_following_them) {
    setting_history history;
    for (std::uint64_t record = 1; record <= 1000; ++record) {
        auto numbered = timer("1");
        numbered.name = "T" + std::to_string(record);
        history.add(record, 0, {numbered});
    }
    EXPECT_THAT(history.entries(), SizeIs(500));
    auto first = timer("2");
    first.name = "T1";
    history.add(1001, 0, {first});
    EXPECT_THAT(entry_of(history, "T1", granted).last, change(1001, "2"));
}

TEST(texts_of_changes, have_the_unit_and_mark_what_is_not_known) {
    EXPECT_EQ(text_of({.value = "10", .unit = "s"}), "10 s");
    EXPECT_EQ(text_of({.value = "deactivated"}), "deactivated");
    EXPECT_EQ(text_of({.value = "7", .known = false}), "7 (?)");
    EXPECT_EQ(text_of({.value = "20.48", .unit = "s", .known = false}), "20.48 s (?)");
}

// What ends without a word

class setting_ends : public testing::Test {
  protected:
    /// What the next record tells, in a message that does this.
    void tell(const std::vector<setting>& settings, const message_description& message = {}) {
        history_.add(++record_, 0, settings);
        history_.follow(record_, message);
    }

    static setting of(const char* name, setting_role role, const char* value = "1") {
        return {name, value, "", role, ""};
    }

    std::uint64_t end_of(const char* name, setting_role role) const {
        return entry_of(history_, name, role).ended_in;
    }

    setting_history history_;

  private:
    std::uint64_t record_ = 0;
};

constexpr auto configured = setting_role::configured;
constexpr auto broadcast = setting_role::broadcast;
const message_description accept{.registration = registration_event::accept};
const message_description release{.event = message_event::connection_end};

TEST_F(setting_ends, come_with_an_accept_that_leaves_out_what_is_granted_anew) {
    constexpr std::array names{"T3324",
                               "T3412 extended",
                               "eDRX cycle",
                               "eDRX cycle in NB-S1 mode",
                               "paging time window",
                               "paging time window in WB-S1 mode",
                               "UE-specific DRX cycle in NB-S1 mode"};
    for (const char* const name : names) {
        tell({of(name, granted), of(name, requested), of("T3412", granted)}, accept);
    }
    tell({}, accept);
    for (const char* const name : names) {
        EXPECT_NE(end_of(name, granted), 0U) << name;
        EXPECT_EQ(end_of(name, requested), 0U) << name;
    }
    EXPECT_EQ(end_of("T3412", granted), 0U);
    EXPECT_EQ(history_.registration().accepted_in, 8U);
}

TEST_F(setting_ends, are_told_by_the_first_record_that_leaves_a_setting_out) {
    tell({timer("10")}, accept);
    tell({}, accept);
    tell({}, accept);
    EXPECT_EQ(end_of("T3324", granted), 2U);
}

TEST_F(setting_ends, do_not_come_with_other_messages) {
    tell({timer("10")}, accept);
    tell({});
    EXPECT_EQ(end_of("T3324", granted), 0U);
}

TEST_F(setting_ends, come_with_rejects_and_detaches) {
    for (const auto registration : {registration_event::reject, registration_event::detach}) {
        tell({timer("10")}, accept);
        tell({}, {.registration = registration});
        EXPECT_NE(end_of("T3324", granted), 0U);
        EXPECT_TRUE(history_.registration().has_ended());
        EXPECT_EQ(history_.registration().ended_by, registration);
    }
}

TEST_F(setting_ends, are_over_when_the_setting_comes_again_which_is_a_change) {
    tell({timer("10")}, accept);
    tell({}, {.registration = registration_event::detach});
    tell({timer("10")}, accept);
    const auto& entry = entry_of(history_, "T3324", granted);
    EXPECT_EQ(entry.ended_in, 0U);
    EXPECT_EQ(entry.changes, 2U);
    EXPECT_EQ(entry.last.record, 3U);
    EXPECT_FALSE(history_.registration().has_ended());
}

TEST_F(setting_ends, come_with_a_release_that_does_not_redirect) {
    constexpr std::array names{
        "release cause", "extended wait time",    "extended wait time, control plane data",
        "redirection",   "redirection's carrier", "wait time"};
    for (const char* const name : names) {
        tell({of(name, configured)}, release);
    }
    tell({of("T310", configured), of("release cause", configured)}, release);
    EXPECT_EQ(end_of("release cause", configured), 0U);
    for (std::size_t i = 1; i < names.size(); ++i) {
        EXPECT_NE(end_of(names[i], configured), 0U) << names[i];
    }
    tell({}, release);
    EXPECT_EQ(end_of("T310", configured), 0U);
}

TEST_F(setting_ends, come_with_the_drx_that_is_released) {
    constexpr std::array names{"long DRX cycle",
                               "short DRX cycle",
                               "short DRX cycle timer",
                               "on-duration timer",
                               "DRX inactivity timer",
                               "DRX retransmission timer",
                               "DRX UL retransmission timer"};
    for (const char* const name : names) {
        tell({of(name, configured), of("connected-mode DRX", configured, "set up")});
    }
    EXPECT_EQ(end_of(names[0], configured), 0U);
    tell({of("connected-mode DRX", configured, "released")});
    for (const char* const name : names) {
        EXPECT_EQ(end_of(name, configured), 8U) << name;
    }
    EXPECT_EQ(end_of("connected-mode DRX", configured), 0U);
    tell({of("long DRX cycle", configured)});
    tell({of("T310", configured)});
    EXPECT_EQ(end_of("long DRX cycle", configured), 0U);
}

TEST_F(setting_ends, come_with_another_cell_that_does_not_broadcast_a_setting) {
    constexpr std::array names{"eDRX allowed", "hyper-SFN", "p-Max", "further band"};
    tell({of("cell identity", broadcast, "1"), of("nB", broadcast)});
    for (const char* const name : names) {
        tell({of("cell identity", broadcast, "1"), of(name, broadcast)});
        EXPECT_EQ(end_of(name, broadcast), 0U) << name;
    }
    EXPECT_EQ(end_of(names[0], broadcast), 0U);
    tell({of("cell identity", broadcast, "2")});
    for (const char* const name : names) {
        EXPECT_EQ(end_of(name, broadcast), 6U) << name;
    }
    EXPECT_EQ(end_of("nB", broadcast), 0U);
}

TEST(setting_histories, know_the_radio_access_of_the_last_message_that_tells_it) {
    setting_history history;
    EXPECT_EQ(history.access(), radio_access::unknown);
    history.follow(1, {.access = radio_access::nb_s1});
    history.follow(2, {});
    EXPECT_EQ(history.access(), radio_access::nb_s1);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
