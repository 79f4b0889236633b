/// The settings of a trace, and how they changed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "replay/record/message_description.h"
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
    /// The one in force, or that was.
    setting_change last = {};
    /// The last record that gave it, with whatever value.
    std::uint64_t last_record = 0;
    /// The record behind which it is no longer in force; 0 while it is.
    std::uint64_t ended_in = 0;
};

/// Whether the network has accepted the modem; the numbers of records are 0 where there is none.
struct registration_state {
    /// The last accept of an attach or a tracking area update.
    std::uint64_t accepted_in = 0;
    /// The last reject, or the last detach.
    std::uint64_t ended_in = 0;
    registration_event ended_by = registration_event::none;

    bool has_ended() const { return ended_in > accepted_in; }
};

/// Its size does not grow with the number of records.
class setting_history {
  public:
    /// @param settings of the record
    void add(std::uint64_t record, std::uint64_t timestamp, const std::vector<setting>& settings);

    /// Ends what the message ends, or leaves out.
    /// @param message of the record whose settings were added last
    void follow(std::uint64_t record, const message_description& message);

    /// In the order in which they came up.
    const std::vector<setting_entry>& entries() const { return entries_; }

    /// Null for a setting that did not come up.
    const setting_entry* find(std::string_view name, setting_role role) const;

    /// Whether the network had granted it, and a later accept does not any more.
    bool is_left_out(const setting_entry& given) const {
        return given.ended_in != 0 && given.ended_in <= registration_.accepted_in;
    }

    const registration_state& registration() const { return registration_; }

    /// Of the last message that tells it.
    radio_access access() const { return access_; }

  private:
    void change(const setting& told, setting_change value);
    void end(std::uint64_t record, bool (*is_ended)(std::string_view name, setting_role role));

    std::vector<setting_entry> entries_;
    registration_state registration_;
    radio_access access_ = radio_access::unknown;
};

/// "10 s", "deactivated"; with a mark for a value whose meaning is not known.
std::string text_of(const setting_change& change);

}  // namespace KIVRA::TSHARK::REPLAY
