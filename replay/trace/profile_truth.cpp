#include "replay/trace/profile_truth.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct member_meaning {
    std::string_view member;
    /// The setting that it stands for, and where that may come from.
    std::string_view setting;
    setting_role role;
    /// Why its number is another one; empty for values that are no numbers of the setting's unit.
    std::string_view difference;
};

constexpr std::string_view table_index = "place in a table of timers, not milliseconds";
constexpr std::string_view quarter = "a quarter of it: NB-IoT's cycles read as LTE's";
constexpr std::string_view other_unit = "not in that unit";

/// The first that the record has counts.
constexpr std::array<member_meaning, 10> meanings{{
    {"idrx_int", "default paging cycle", setting_role::broadcast, quarter},
    {"idrx_reps", "MPDCCH repetitions for paging", setting_role::broadcast, other_unit},
    {"idrx_reps", "NPDCCH repetitions for paging", setting_role::broadcast, other_unit},
    {"cdrx_int", "long DRX cycle", setting_role::configured, table_index},
    {"cdrx_on_duration", "on-duration timer", setting_role::configured, other_unit},
    {"cdrx_inactive_timer", "DRX inactivity timer", setting_role::configured, other_unit},
    {"config_lte_psm_req_rat", "T3324", setting_role::granted, ""},
    {"config_lte_psm_req_rat", "T3324", setting_role::requested, ""},
    {"config_lte_psm_req_rptau", "T3412 extended", setting_role::granted, ""},
    {"config_lte_psm_req_rptau", "T3412 extended", setting_role::requested, ""},
}};

/// What was in force with a record; null where that is not known.
const setting_change* change_at(const setting_entry& entry, std::uint64_t record) {
    const setting_change* found = entry.last.record <= record ? &entry.last : nullptr;
    for (const auto& change : entry.first) {
        if (found == nullptr || (change.record <= record && change.record > found->record)) {
            found = change.record <= record ? &change : found;
        }
    }
    // Behind the changes that are kept, the last one alone is known.
    const bool some_are_missing = entry.changes > entry.first.size() + 1;
    return some_are_missing && found == &entry.first.back() && found->record < record ? nullptr
                                                                                      : found;
}

std::optional<double> number_in(const std::string& text) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && !text.empty() ? std::optional(number)
                                                              : std::nullopt;
}

bool are_equal(const std::string& value, const setting_change& truth) {
    const auto one = number_in(value);
    const auto other = number_in(truth.value);
    constexpr double rounding = 1e-9;
    return one && other && std::abs(*one - *other) < rounding;
}

profile_truth truth_of(const profile_value& value, std::uint64_t record,
                       const setting_history& settings) {
    profile_truth result{value.name, value.value, record, "", ""};
    std::uint64_t newest = 0;
    for (const auto& meaning : meanings) {
        const auto* const entry =
            meaning.member == value.name ? settings.find(meaning.setting, meaning.role) : nullptr;
        const auto* const change = entry == nullptr ? nullptr : change_at(*entry, record);
        if (change == nullptr) {
            continue;
        }
        // Requested and granted take turns in the profile: the later one is in it.
        const auto given = entry->last_record == record ? record : change->record;
        if (given <= newest) {
            continue;
        }
        newest = given;
        result.truth = std::string(meaning.setting) + ' ' + text_of(*change);
        if (meaning.role == setting_role::granted || meaning.role == setting_role::requested) {
            result.truth.append(" ").append(text_of(meaning.role));
        }
        result.difference = are_equal(value.value, *change) ? "" : meaning.difference;
    }
    return result;
}

}  // namespace

std::vector<profile_truth> truth_beside(const profile_content& profile,
                                        const std::map<std::string, std::uint64_t>& sources,
                                        const setting_history& settings) {
    std::vector<profile_truth> list;
    for (const auto& value : profile) {
        if (const auto source = sources.find(value.name); source != sources.end()) {
            list.push_back(truth_of(value, source->second, settings));
        }
    }
    return list;
}

}  // namespace KIVRA::TSHARK::REPLAY
