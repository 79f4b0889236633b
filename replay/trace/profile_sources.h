/// Which record each value of the profile came from.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "context/sink_context.h"
#include "replay/trace/setting_history.h"

namespace KIVRA::TSHARK::REPLAY {

/// A setting as a record gave it.
struct told_setting {
    std::string name;
    setting_role role = setting_role::requested;
    setting_change change = {};
};

struct profile_source {
    std::uint64_t record = 0;
    /// What that record says in the units of 3GPP; for the member `psm`, the T3324 that granted
    /// PSM when the profile was written. Nothing where that is not known.
    std::optional<told_setting> setting = {};
};

/// Follows the result documents of a run, by the rules by which the profile is written.
class profile_sources {
  public:
    using by_member = std::map<std::string, profile_source, std::less<>>;

    /// @param number of the record that the document is of
    /// @param settings of the records up to this one
    void follow(std::uint64_t number, const nlohmann::json& result,
                const setting_history& settings);

    /// By the members of the last profile that was due; the others are at their defaults.
    const by_member& of_members() const { return written_; }

    /// Why a member is at its default though a record told its setting.
    /// @param record the last one that did
    std::string_view why_default(std::string_view member, std::uint64_t record) const;

  private:
    void write(std::uint64_t number, const setting_history& settings);

    profile_texts texts_;
    by_member known_;
    by_member written_;
    /// The last record of each member, whatever became of its value.
    std::map<std::string, std::uint64_t, std::less<>> given_;
    /// The record that completed the last profile, and the one before.
    std::uint64_t written_in_ = 0;
    std::uint64_t written_before_ = 0;
};

/// The setting that a member stands for; of several, the one that was told last. Null for members
/// that stand for none, and where none was told.
const setting_entry* setting_behind(std::string_view member, const setting_history& settings);

/// The T3324 that grants PSM; null without one.
const setting_entry* granted_active_time(const setting_history& settings);

}  // namespace KIVRA::TSHARK::REPLAY
