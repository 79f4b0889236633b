#include "replay/report/settings_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>

#include "replay/report/formatting.h"
#include "replay/trace/area_update_timer.h"
#include "replay/trace/conclusions.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::string_view indent = "    ";
constexpr int name_width = 32;
constexpr int value_width = 14;
constexpr int wide_value_width = 2 * value_width;
constexpr int number_width = 8;
/// Where columns end.
constexpr int name_end = static_cast<int>(indent.size()) + name_width;
constexpr int value_end = name_end + wide_value_width;

constexpr double microseconds_a_second = 1'000'000;

std::string blanks(int count) {
    std::string text(static_cast<std::size_t>(count), ' ');
    return text;
}

std::string shown(const setting_entry* entry) {
    if (entry == nullptr) {
        return "-";
    }
    return printable(text_of(entry->last)) + (entry->ended_in == 0 ? "" : ", ended");
}

/// In its column; what is longer goes on to the end of the line, and the next column is on a line
/// below.
/// @param end of the column, from the beginning of the line
void print_cell(std::ostream& out, std::string_view text, int width, int end) {
    const auto columns = static_cast<int>(columns_of(text));
    if (columns < width) {
        out << text << blanks(width - columns);
    } else {
        print_wrapped(out, text, static_cast<std::size_t>(end - width), blanks(end - width));
        out << blanks(end);
    }
}

void print_numbers(std::ostream& out, std::uint64_t record, std::uint64_t changes) {
    out << std::right << std::setw(number_width) << record << std::setw(number_width) << changes
        << '\n';
}

void print_heading(std::ostream& out, std::string_view name) {
    out << '\n' << std::left << std::setw(name_end) << name;
}

bool has_role(const setting_entry& entry, setting_role role) {
    return entry.role == role;
}

/// Requested and granted side by side.
void print_agreed(std::ostream& out, const setting_history& settings) {
    const auto& entries = settings.entries();
    const auto is_agreed = [](const setting_entry& entry) {
        return has_role(entry, setting_role::requested) || has_role(entry, setting_role::granted);
    };
    if (std::ranges::none_of(entries, is_agreed)) {
        return;
    }
    print_heading(out, "settings");
    out << std::setw(value_width) << "requested" << std::setw(value_width) << "granted"
        << std::right << std::setw(number_width) << "record" << std::setw(number_width) << "changed"
        << '\n';
    for (const auto& entry : entries) {
        const auto* const asked = settings.find(entry.name, setting_role::requested);
        const auto* const given = settings.find(entry.name, setting_role::granted);
        // Where there are both, the pair stands in place of the first.
        const auto* const first =
            asked == nullptr || (given != nullptr && given < asked) ? given : asked;
        if (!is_agreed(entry) || &entry != first) {
            continue;
        }
        const setting_entry& last = given == nullptr ? entry : *given;
        out << indent;
        print_cell(out, printable(entry.name), name_width, name_end);
        print_cell(out, shown(asked), value_width, name_end + value_width);
        print_cell(out, shown(given), value_width, value_end);
        print_numbers(
            out, last.last.record,
            (asked == nullptr ? 0 : asked->changes) + (given == nullptr ? 0 : given->changes));
    }
}

void print_of_role(std::ostream& out, const setting_history& settings, setting_role role,
                   std::string_view heading) {
    const auto& entries = settings.entries();
    if (std::ranges::none_of(entries,
                             [role](const auto& entry) { return has_role(entry, role); })) {
        return;
    }
    print_heading(out, heading);
    out << std::setw(wide_value_width) << "value" << std::right << std::setw(number_width)
        << "record" << std::setw(number_width) << "changed" << '\n';
    for (const auto& entry : entries) {
        if (has_role(entry, role)) {
            out << indent;
            print_cell(out, printable(entry.name), name_width, name_end);
            print_cell(out, shown(&entry), wide_value_width, value_end);
            print_numbers(out, entry.last.record, entry.changes);
        }
    }
}

/// To the millisecond.
std::string seconds_text(std::uint64_t microseconds) {
    constexpr double milliseconds_a_second = 1'000;
    const double seconds = static_cast<double>(microseconds) / microseconds_a_second;
    return readable_seconds(std::round(seconds * milliseconds_a_second) / milliseconds_a_second);
}

void print_durations(std::ostream& out, std::string_view name,
                     const duration_statistics& durations) {
    if (durations.count() == 0) {
        return;
    }
    std::string text = std::to_string(durations.count()) + " x";
    if (durations.count() == 1) {
        text += ' ' + seconds_text(durations.greatest());
    } else {
        text += ", " + seconds_text(durations.least()) + " to " +
                seconds_text(durations.greatest()) + ", median " + seconds_text(durations.median());
    }
    out << indent;
    print_cell(out, name, name_width, name_end);
    print_wrapped(out, text, name_end, blanks(name_end));
}

/// What the measured updates are to be held against.
void print_area_update_timer(std::ostream& out, const setting_history& settings) {
    if (const auto timer = area_update_timer_of(settings)) {
        out << indent;
        print_cell(out, "area updates due", name_width, name_end);
        out << (timer->seconds ? "every " + readable_seconds(*timer->seconds) + ", which is "
                               : printable(timer->value) + ": ")
            << timer->name << '\n';
    }
}

void print_measured(std::ostream& out, const trace& told) {
    const connection_log& connections = told.connections;
    if (connections.connected().count() == 0 && connections.paging() == 0 &&
        connections.between_updates().count() == 0) {
        return;
    }
    out << "\nmeasured\n";
    print_durations(out, "connected", connections.connected());
    print_durations(out, "silence before release", connections.inactivity());
    print_durations(out, "idle between connections", connections.idle());
    print_durations(out, "between area updates", connections.between_updates());
    if (connections.between_updates().count() != 0) {
        print_area_update_timer(out, told.settings);
    }
    for (const auto& [cause, count] : connections.causes()) {
        out << indent;
        print_cell(out, "connections for " + cause, name_width, name_end);
        out << count << '\n';
    }
    if (const auto share = connections.share_connected()) {
        out << indent;
        print_cell(out, "time connected", name_width, name_end);
        out << std::fixed << std::setprecision(1) << *share << std::defaultfloat << " %\n";
    }
    if (connections.incomplete() != 0) {
        out << indent;
        print_cell(out, "connections not whole", name_width, name_end);
        out << connections.incomplete() << '\n';
    }
    if (connections.paging() != 0) {
        out << indent;
        print_cell(out, "paging received", name_width, name_end);
        out << connections.paging() << '\n';
    }
}

}  // namespace

void print_settings(std::ostream& out, const trace& told) {
    print_agreed(out, told.settings);
    print_of_role(out, told.settings, setting_role::broadcast, "broadcast by the cell");
    print_of_role(out, told.settings, setting_role::configured, "configured");
    print_measured(out, told);
    const auto conclusions = conclusions_of(told.settings);
    if (!conclusions.empty()) {
        out << "\nwhat follows\n";
    }
    for (const auto& [text, record] : conclusions) {
        print_wrapped(out, printable(text) + " (record " + std::to_string(record) + ")", indent);
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
