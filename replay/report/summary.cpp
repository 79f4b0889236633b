#include "replay/report/summary.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/report/diagnostic_help.h"
#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::string_view indent = "    ";

/// How wide names are printed; the longest of a message has 30 characters.
constexpr int name_width = 32;
constexpr int value_width = 12;
constexpr std::size_t line_width = 100;

/// How many changes of a value are shown, but for the last.
constexpr std::size_t shown_changes = 5;

std::string in_record(std::uint64_t number) {
    return "record " + std::to_string(number);
}

/// Prints words on lines that begin with the indent.
void print_wrapped(std::ostream& out, std::string_view text, std::string_view line_start) {
    while (!text.empty()) {
        const auto width = line_width - line_start.size();
        auto end = text.size();
        if (end > width) {
            const auto blank = text.rfind(' ', width);
            end = blank == std::string_view::npos ? std::min(text.find(' '), end) : blank;
        }
        out << line_start << text.substr(0, end) << '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

void summary::add(std::uint64_t number, const trace_record& record, const outcome& result,
                  const record_details& details) {
    count(all_, result);
    count(formats_[record.format], result);
    for (const auto& message : details.messages) {
        ++messages_[message];
    }
    for (const auto& value : details.values) {
        add_value(number, value);
    }
    if (result.failure) {
        add_diagnostic(number, result.failure->text, help_for(*result.failure));
    }
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            add_diagnostic(number, message.text, help_for(message));
        }
    }
    sources_.follow(number, result.document);
}

void summary::count(tally& counts, const outcome& result) {
    ++counts.records;
    counts.with_result += result.document.is_null() ? 0 : 1;
    counts.failed += result.failure ? 1 : 0;
}

void summary::add_value(std::uint64_t number, const detail_value& value) {
    auto& history = values_[value.name];
    if (history.changes != 0 && history.last.value == value.value) {
        return;
    }
    ++history.changes;
    history.last = {number, value.value};
    if (history.first.size() < shown_changes) {
        history.first.push_back(history.last);
    }
}

void summary::add_diagnostic(std::uint64_t number, const std::string& text, std::string_view help) {
    auto& entry = diagnostics_[text];
    if (entry.count == 0) {
        entry.first_record = number;
        entry.help = help;
    }
    ++entry.count;
}

void summary::print(std::ostream& out, const profile_file& profile) const {
    out << '\n'
        << pluralise(all_.records, "record") << ": " << all_.with_result << " with a result, "
        << all_.records - all_.with_result - all_.failed << " without, " << all_.failed
        << " failed\n";
    print_formats(out);
    print_messages(out);
    print_values(out);
    print_diagnostics(out);
    print_profile(out, profile);
}

void summary::print_formats(std::ostream& out) const {
    for (const auto& [format, counts] : formats_) {
        out << indent << std::left << std::setw(name_width)
            << (format.empty() ? "(no format)" : printable(format)) << counts.records << ": "
            << counts.with_result << " with a result, " << counts.failed << " failed\n";
    }
}

void summary::print_messages(std::ostream& out) const {
    if (messages_.empty()) {
        return;
    }
    out << "\nmessages\n";
    for (const auto& [message, count] : messages_) {
        out << indent << std::left << std::setw(name_width) << printable(message) << count << '\n';
    }
}

void summary::print_values(std::ostream& out) const {
    if (values_.empty()) {
        return;
    }
    out << "\nvalues, and the records that changed them\n";
    for (const auto& [name, history] : values_) {
        out << indent << std::left << std::setw(name_width) << printable(name);
        std::string_view separator;
        for (const auto& [record, value] : history.first) {
            out << separator << printable(value) << " (" << in_record(record) << ')';
            separator = ", ";
        }
        if (history.changes > shown_changes) {
            out << ", ... " << printable(history.last.value) << " ("
                << in_record(history.last.record) << "; " << history.changes << " changes)";
        }
        out << '\n';
    }
}

void summary::print_diagnostics(std::ostream& out) const {
    if (diagnostics_.empty()) {
        return;
    }
    out << "\nfailures and log messages\n";
    for (const auto& [text, entry] : diagnostics_) {
        out << indent << entry.count << " x " << printable(text) << " (first in "
            << in_record(entry.first_record) << ")\n";
        print_wrapped(out, entry.help, "        ");
    }
}

void summary::print_profile(std::ostream& out, const profile_file& profile) const {
    out << "\nprofile " << printable(profile.path().string());
    if (profile.written()) {
        out << '\n';
        print_members(out, profile.read());
    } else if (const auto obstacle = profile.obstacle()) {
        out << ": not written by this run: the path can't be written (" << *obstacle << ")\n";
    } else {
        out << ": not written by this run: the records did not give both idrx_int and "
               "idrx_reps\n";
    }
}

void summary::print_members(std::ostream& out, const profile_content& content) const {
    std::string defaults;
    for (const auto& [name, value] : content) {
        const auto source = sources_.of_members().find(name);
        if (source == sources_.of_members().end()) {
            defaults += (defaults.empty() ? "at their defaults: " : ", ") + name + ' ' +
                        (value.empty() ? R"("")" : value);
            continue;
        }
        out << indent << std::left << std::setw(name_width) << printable(name)
            << std::setw(value_width) << printable(value) << in_record(source->second) << '\n';
    }
    print_wrapped(out, printable(defaults), indent);
}

}  // namespace KIVRA::TSHARK::REPLAY
