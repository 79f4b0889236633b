/// The settings of a trace, and how they changed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "replay/record/setting.h"

namespace KIVRA::TSHARK::REPLAY {

/// A value that a record gave.
struct setting_change {
    std::uint64_t record = 0;
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// Several in one record are separated by ", ".
    std::string value = {};
    std::string_view unit = {};
    bool known = true;
};

struct setting_entry {
    std::string name;
    setting_role role;
    std::string_view clause;
    /// How often it came with another value than before; the first time counts.
    std::uint64_t changes = 0;
    /// The first ones.
    std::vector<setting_change> first = {};
    /// The one in force.
    setting_change last = {};
    /// The last record that gave it, with whatever value.
    std::uint64_t last_record = 0;
};

/// Its size does not grow with the number of records.
class setting_history {
  public:
    /// @param settings of the record
    void add(std::uint64_t record, std::uint64_t timestamp, const std::vector<setting>& settings);

    /// In the order in which they came up.
    const std::vector<setting_entry>& entries() const { return entries_; }

    /// Null for a setting that did not come up.
    const setting_entry* find(std::string_view name, setting_role role) const;

  private:
    void change(const setting& told, setting_change value);

    std::vector<setting_entry> entries_;
};

/// "10 s", "deactivated"; with a mark for a value whose meaning is not known.
std::string text_of(const setting_change& change);

}  // namespace KIVRA::TSHARK::REPLAY
