#include "replay/trace/profile_truth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

#include "profile/parameter_file.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct member_difference {
    std::string_view member;
    std::string_view difference;
};

/// Why the number of a member is another one than its setting's; the other members are no numbers
/// of the setting's unit.
constexpr std::array<member_difference, 5> differences{{
    {"idrx_int", "a quarter of it: NB-IoT's cycles read as LTE's"},
    {"idrx_reps", "not in that unit"},
    {"cdrx_int", "place in a table of timers, not milliseconds"},
    {"cdrx_on_duration", "not in that unit"},
    {"cdrx_inactive_timer", "not in that unit"},
}};

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

std::string_view difference_of(const profile_value& value, const setting_change& truth) {
    const auto* const found =
        std::ranges::find(differences, value.name, &member_difference::member);
    return found == differences.end() || are_equal(value.value, truth) ? "" : found->difference;
}

std::string words_of(const std::string& name, setting_role role, const setting_change& change) {
    std::string text = name + ' ' + text_of(change);
    if (role == setting_role::granted || role == setting_role::requested) {
        text.append(" ").append(text_of(role));
    }
    return text;
}

std::string granted_words(const setting_change& active_time) {
    return "PSM granted: T3324 " + text_of(active_time);
}

profile_truth truth_of_source(const profile_value& value, const profile_source& source) {
    profile_truth result{value.name, value.value, source.record, "", ""};
    if (value.name == PROFILE::psm_member) {
        result.truth = source.setting ? granted_words(source.setting->change) : "PSM not granted";
        result.difference = source.setting ? "" : "True wherever both timers are told";
    } else if (source.setting) {
        const auto& [name, role, change] = *source.setting;
        result.truth = words_of(name, role, change);
        result.difference = difference_of(value, change);
    }
    return result;
}

/// Nothing for a member whose setting is not in the trace.
std::optional<profile_truth> truth_of_default(const profile_value& value,
                                              const profile_sources& sources,
                                              const setting_history& settings) {
    if (value.name == PROFILE::psm_member) {
        const auto* const active_time = granted_active_time(settings);
        return active_time == nullptr
                   ? std::nullopt
                   : std::optional(profile_truth{value.name, value.value, active_time->last_record,
                                                 granted_words(active_time->last),
                                                 "granted all the same"});
    }
    const auto* const entry = setting_behind(value.name, settings);
    return entry == nullptr
               ? std::nullopt
               : std::optional(profile_truth{value.name, value.value, entry->last_record,
                                             words_of(entry->name, entry->role, entry->last),
                                             sources.why_default(value.name, entry->last_record)});
}

}  // namespace

std::vector<profile_truth> truth_beside(const profile_content& profile,
                                        const profile_sources& sources,
                                        const setting_history& settings) {
    std::vector<profile_truth> list;
    const auto& known = sources.of_members();
    for (const auto& value : profile) {
        if (const auto source = known.find(value.name); source != known.end()) {
            list.push_back(truth_of_source(value, source->second));
        } else if (auto truth = truth_of_default(value, sources, settings)) {
            list.push_back(std::move(*truth));
        }
    }
    return list;
}

}  // namespace KIVRA::TSHARK::REPLAY
