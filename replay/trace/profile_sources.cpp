#include "replay/trace/profile_sources.h"

#include <algorithm>
#include <array>

#include "profile/parameter_file.h"
#include "profile/profile_values.h"
#include "profile/result_mapping.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct member_meaning {
    std::string_view member;
    std::string_view setting;
    setting_role role;
};

constexpr std::array<member_meaning, 14> meanings{{
    {"idrx_int", "default paging cycle", setting_role::broadcast},
    {"idrx_reps", "MPDCCH repetitions for paging", setting_role::broadcast},
    {"idrx_reps", "NPDCCH repetitions for paging", setting_role::broadcast},
    {"cdrx_int", "long DRX cycle", setting_role::configured},
    {"cdrx_on_duration", "on-duration timer", setting_role::configured},
    {"cdrx_inactive_timer", "DRX inactivity timer", setting_role::configured},
    {"config_lte_edrx_req_value", "eDRX cycle", setting_role::granted},
    {"config_lte_edrx_req_value", "eDRX cycle", setting_role::requested},
    {"config_lte_psm_req_rat", "T3324", setting_role::granted},
    {"config_lte_psm_req_rat", "T3324", setting_role::requested},
    {"config_lte_psm_req_rptau", "T3412 extended", setting_role::granted},
    {"config_lte_psm_req_rptau", "T3412 extended", setting_role::requested},
    {"psm_int", "T3412 extended", setting_role::granted},
    {"psm_int", "T3412 extended", setting_role::requested},
}};

std::optional<told_setting> told_by(const setting_entry* entry) {
    return entry == nullptr ? std::nullopt
                            : std::optional(told_setting{entry->name, entry->role, entry->last});
}

bool comes_from_traces(std::string_view member) {
    return std::ranges::any_of(PROFILE::profile_values,
                               [member](const auto& value) { return value.file_member == member; });
}

}  // namespace

void profile_sources::follow(std::uint64_t number, const nlohmann::json& result,
                             const setting_history& settings) {
    profile_texts given;
    PROFILE::carry_texts(result, given);
    for (const auto& value : PROFILE::profile_values) {
        if (!(given.*value.text).empty()) {
            texts_.*value.text = given.*value.text;
            const std::string member(value.file_member);
            const auto* const entry = setting_behind(member, settings);
            const bool is_told = entry != nullptr && entry->last_record == number;
            known_[member] = {number, told_by(is_told ? entry : nullptr)};
            given_[member] = number;
        }
    }
    if (PROFILE::is_complete(texts_)) {
        write(number, settings);
    }
}

void profile_sources::write(std::uint64_t number, const setting_history& settings) {
    written_ = known_;
    if (PROFILE::has_psm_timers(texts_)) {
        profile_source& psm = written_[std::string(PROFILE::psm_member)];
        for (const auto& timer : PROFILE::psm_timers) {
            psm.record = std::max(psm.record, known_.at(std::string(timer.file_member)).record);
        }
        psm.setting = told_by(granted_active_time(settings));
    } else {
        for (const auto& timer : PROFILE::psm_timers) {
            written_.erase(std::string(timer.file_member));
        }
    }
    known_.clear();
    texts_ = {};
    written_before_ = written_in_;
    written_in_ = number;
}

std::string_view profile_sources::why_default(std::string_view member, std::uint64_t record) const {
    if (!comes_from_traces(member)) {
        return "at its default: the profile never takes it";
    }
    if (const auto given = given_.find(member); given == given_.end() || given->second != record) {
        return "at its default: the profile does not take it from that message";
    }
    if (record > written_in_) {
        return "at its default: told after the profile was written";
    }
    // Only the timers can be left out of the profile that follows them.
    return record > written_before_ ? "at its default: the profile takes both timers or none"
                                    : "at its default: told before an earlier profile";
}

const setting_entry* setting_behind(std::string_view member, const setting_history& settings) {
    const setting_entry* newest = nullptr;
    for (const auto& meaning : meanings) {
        const auto* const entry =
            meaning.member == member ? settings.find(meaning.setting, meaning.role) : nullptr;
        if (entry != nullptr && (newest == nullptr || entry->last_record > newest->last_record)) {
            newest = entry;
        }
    }
    return newest;
}

const setting_entry* granted_active_time(const setting_history& settings) {
    const auto* const entry = settings.find("T3324", setting_role::granted);
    return entry != nullptr && entry->last.known && entry->last.unit == "s" && entry->ended_in == 0
               ? entry
               : nullptr;
}

}  // namespace KIVRA::TSHARK::REPLAY
