#include "replay/report/summary.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/record/record_format.h"
#include "replay/report/diagnostic_help.h"
#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::string_view indent = "    ";

/// How wide names are printed.
constexpr int name_width = 32;
constexpr int value_width = 12;
constexpr int count_width = 9;
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

/// What to know about a format that is not analysed.
std::string analysis_note(const std::string& format) {
    if (format.empty() || format == others || is_analysed(format)) {
        return {};
    }
    const auto nearest = nearest_analysed(format);
    return nearest.empty() ? "; not analysed"
                           : "; not analysed: tshark knows " + std::string(nearest);
}

void print_sighting(std::ostream& out, std::string_view what, const auto& seen) {
    if (seen.count != 0) {
        out << indent << std::left << std::setw(name_width) << what << seen.count << " (first in "
            << in_record(seen.first_record) << ")\n";
    }
}

}  // namespace

void summary::add(std::uint64_t number, const trace_record& record, const outcome& result,
                  const std::vector<detail_value>& details) {
    count(all_, result);
    count(formats_[record.format], result);
    ++messages_[result.message.name];
    if (result.message.is_malformed) {
        malformed_.add(number);
    }
    if (result.message.is_ciphered) {
        ciphered_.add(number);
    }
    for (const auto& value : details) {
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

void summary::sighting::add(std::uint64_t number) {
    if (count++ == 0) {
        first_record = number;
    }
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

void summary::print(std::ostream& out, const profile_file& profile,
                    const capture_content& captures) const {
    out << '\n'
        << pluralise(all_.records, "record") << ": " << all_.with_result << " with a result, "
        << all_.records - all_.with_result - all_.failed << " without, " << all_.failed
        << " failed\n";
    print_formats(out);
    print_messages(out);
    print_unreadable(out, captures);
    print_values(out);
    print_diagnostics(out);
    print_profile(out, profile);
}

void summary::print_formats(std::ostream& out) const {
    for (const auto& [format, counts] : formats_) {
        out << indent << std::left << std::setw(name_width)
            << (format.empty() ? "(no format)" : printable(format)) << counts.records << ": "
            << counts.with_result << " with a result, " << counts.failed << " failed"
            << analysis_note(format) << '\n';
    }
}

void summary::print_messages(std::ostream& out) const {
    if (messages_.empty()) {
        return;
    }
    out << "\nmessages\n";
    for (const auto& [message, count] : messages_) {
        out << std::right << std::setw(count_width) << count << " x " << printable(message) << '\n';
    }
}

void summary::print_unreadable(std::ostream& out, const capture_content& captures) const {
    if (malformed_.count == 0 && ciphered_.count == 0 && captures.encrypted_rrc == 0) {
        return;
    }
    out << "\nnot readable, or not to the end\n";
    print_sighting(out, "malformed messages", malformed_);
    print_sighting(out, "ciphered NAS messages", ciphered_);
    if (captures.encrypted_rrc != 0) {
        out << indent << std::left << std::setw(name_width) << "encrypted RRC signalling"
            << pluralise(captures.encrypted_rrc, "packet") << '\n';
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
        print_wrapped(out, reason_for_no_profile(), indent);
    }
}

/// What is missing, and why it may be.
std::string summary::reason_for_no_profile() const {
    const auto saw_channel = [this](std::string_view name) {
        return std::ranges::any_of(
            messages_, [name](const auto& entry) { return entry.first.starts_with(name); });
    };
    const bool saw_plain_lte = saw_channel("BCCH-DL-SCH, ");
    const bool saw_iot = saw_channel("BCCH-DL-SCH BR") || saw_channel("BCCH-DL-SCH NB");
    if (saw_plain_lte && !saw_iot) {
        return "Plain LTE cells broadcast no paging repetitions; those for LTE-M (BCCH-DL-SCH BR) "
               "and for NB-IoT (BCCH-DL-SCH NB) do, in system information block 2.";
    }
    return saw_iot ? "No system information block 2 with both was among the records."
                   : "Both come from system information (BCCH), of which there was none.";
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
