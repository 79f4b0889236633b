#include "replay/trace/setting_history.h"

#include <stdexcept>
#include <string>

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

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
