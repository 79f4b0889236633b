#include "replay/trace/setting_history.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "replay/trace/setting_endings.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// How many changes are kept besides the last.
constexpr std::size_t most_changes = 100;

/// Names come out of tables; only numbered ones could be many.
constexpr std::size_t most_entries = 500;

bool is_same(const setting& one, const setting& other) {
    return one.name == other.name && one.role == other.role;
}

}  // namespace

void setting_history::add(std::uint64_t record, std::uint64_t timestamp,
                          const std::vector<setting>& settings) {
    for (auto told = settings.begin(); told != settings.end(); ++told) {
        const auto is_this = [&told](const setting& other) { return is_same(*told, other); };
        if (std::any_of(settings.begin(), told, is_this)) {
            continue;
        }
        setting_change value{record, timestamp, told->value, told->unit, told->known};
        for (auto more = std::next(told); more != settings.end(); ++more) {
            if (is_this(*more)) {
                value.value += ", " + more->value;
                value.known = value.known && more->known;
            }
        }
        change(*told, std::move(value));
    }
}

void setting_history::follow(std::uint64_t record, const message_description& message) {
    if (message.access != radio_access::unknown) {
        access_ = message.access;
    }
    if (message.registration == registration_event::accept) {
        registration_.accepted_in = record;
    } else if (message.registration != registration_event::none) {
        registration_.ended_in = record;
        registration_.ended_by = message.registration;
    }
    if (message.registration != registration_event::none) {
        end(record, is_granted_anew);
    }
    if (message.event == message_event::connection_end) {
        end(record, is_of_connection_end);
    }
    const auto* const drx = find("connected-mode DRX", setting_role::configured);
    if (drx != nullptr && drx->last_record == record && drx->last.value == "released") {
        end(record, is_of_connected_drx);
    }
    const auto* const cell = find("cell identity", setting_role::broadcast);
    if (cell != nullptr && cell->last.record == record) {
        end(record, is_optional_of_cell);
    }
}

void setting_history::end(std::uint64_t record,
                          bool (*is_ended)(std::string_view name, setting_role role)) {
    for (auto& entry : entries_) {
        if (entry.last_record != record && entry.ended_in == 0 &&
            is_ended(entry.name, entry.role)) {
            entry.ended_in = record;
        }
    }
}

void setting_history::change(const setting& told, setting_change value) {
    auto entry = std::ranges::find_if(entries_, [&told](const setting_entry& known) {
        return known.name == told.name && known.role == told.role;
    });
    if (entry == entries_.end()) {
        if (entries_.size() == most_entries) {
            return;
        }
        entries_.push_back({told.name, told.role, told.clause});
        entry = std::prev(entries_.end());
    }
    entry->last_record = value.record;
    const bool was_in_force = entry->changes != 0 && entry->ended_in == 0;
    entry->ended_in = 0;
    if (was_in_force && entry->last.value == value.value && entry->last.unit == value.unit) {
        return;
    }
    ++entry->changes;
    entry->clause = told.clause;
    if (entry->first.size() < most_changes) {
        entry->first.push_back(value);
    }
    entry->last = std::move(value);
}

const setting_entry* setting_history::find(std::string_view name, setting_role role) const {
    const auto entry = std::ranges::find_if(entries_, [&](const setting_entry& known) {
        return known.name == name && known.role == role;
    });
    return entry == entries_.end() ? nullptr : &*entry;
}

std::string text_of(const setting_change& change) {
    std::string text = change.value;
    if (!change.unit.empty()) {
        text.append(" ").append(change.unit);
    }
    return change.known ? text : text + " (?)";
}

}  // namespace KIVRA::TSHARK::REPLAY
