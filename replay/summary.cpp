#include "replay/summary.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/explanations.h"
#include "replay/text.h"

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
        const auto room = line_width - line_start.size();
        auto end = text.size();
        if (end > room) {
            const auto blank = text.rfind(' ', room);
            end = blank == std::string_view::npos ? std::min(text.find(' '), end) : blank;
        }
        out << line_start << text.substr(0, end) << '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

void summary::note(std::uint64_t number, const record& packet, const outcome& result,
                   const learnt& said) {
    add(all_, result);
    add(formats_[packet.format], result);
    for (const auto& message : said.messages) {
        ++messages_[message];
    }
    for (const auto& value : said.values) {
        note_value(number, value);
    }
    if (result.failure) {
        note_complaint(number, *result.failure);
    }
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            note_complaint(number, message.text);
        }
    }
    sources_.follow(number, result.result);
}

void summary::add(tally& counts, const outcome& result) {
    ++counts.records;
    counts.with_result += result.result.is_null() ? 0 : 1;
    counts.failed += result.failure ? 1 : 0;
}

void summary::note_value(std::uint64_t number, const learnt_value& learnt) {
    auto& history = values_[learnt.name];
    if (history.changes != 0 && history.last.value == learnt.value) {
        return;
    }
    ++history.changes;
    history.last = {number, learnt.value};
    if (history.first.size() < shown_changes) {
        history.first.push_back(history.last);
    }
}

void summary::note_complaint(std::uint64_t number, const std::string& text) {
    auto& noted = complaints_[text];
    if (noted.count == 0) {
        noted.first_record = number;
    }
    ++noted.count;
}

void summary::print(std::ostream& out, const profile_file& profile) const {
    out << '\n'
        << counted(all_.records, "record") << ": " << all_.with_result << " with a result, "
        << all_.records - all_.with_result - all_.failed << " without, " << all_.failed
        << " failed\n";
    print_formats(out);
    print_messages(out);
    print_values(out);
    print_complaints(out);
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

void summary::print_complaints(std::ostream& out) const {
    if (complaints_.empty()) {
        return;
    }
    out << "\nfailures and log messages\n";
    for (const auto& [text, noted] : complaints_) {
        out << indent << noted.count << " x " << printable(text) << " (first in "
            << in_record(noted.first_record) << ")\n";
        print_wrapped(out, explanation_of(text), "        ");
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
