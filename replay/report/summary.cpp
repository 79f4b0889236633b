#include "replay/report/summary.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/record/path_text.h"
#include "replay/record/record_format.h"
#include "replay/report/formatting.h"
#include "replay/report/settings_text.h"
#include "replay/trace/profile_truth.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::string_view indent = "    ";

/// How wide names are printed.
constexpr int name_width = 32;
constexpr int value_width = 12;
constexpr int count_width = 9;

std::string in_record(std::uint64_t number) {
    return "record " + std::to_string(number);
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

void summary::print(std::ostream& out, const profile_file& profile,
                    const capture_content& captures) const {
    out << '\n'
        << pluralise(totals_.all.records, "record") << ": " << totals_.all.with_result
        << " with a result, " << totals_.all.records - totals_.all.with_result - totals_.all.failed
        << " without, " << totals_.all.failed << " failed\n";
    print_formats(out);
    print_incomplete(out, captures);
    print_messages(out);
    print_unreadable(out, captures);
    print_values(out);
    print_diagnostics(out);
    print_settings(out, totals_.told);
    print_profile(out, profile);
}

void summary::print_formats(std::ostream& out) const {
    for (const auto& [format, counts] : totals_.formats) {
        out << indent << std::left << std::setw(name_width)
            << (format.empty() ? "(no format)" : printable(format)) << counts.records << ": "
            << counts.with_result << " with a result, " << counts.failed << " failed"
            << analysis_note(format) << '\n';
    }
}

void summary::print_incomplete(std::ostream& out, const capture_content& captures) {
    if (captures.incomplete.empty()) {
        return;
    }
    out << "\nincomplete\n";
    for (const auto& text : captures.incomplete) {
        print_wrapped(out, printable(text), indent);
    }
}

void summary::print_messages(std::ostream& out) const {
    if (totals_.messages.empty()) {
        return;
    }
    out << "\nmessages\n";
    for (const auto& [message, count] : totals_.messages) {
        out << std::right << std::setw(count_width) << count << " x " << printable(message) << '\n';
    }
}

void summary::print_unreadable(std::ostream& out, const capture_content& captures) const {
    if (totals_.malformed.count == 0 && totals_.ciphered.count == 0 &&
        captures.encrypted_rrc == 0) {
        return;
    }
    out << "\nnot readable, or not to the end\n";
    print_sighting(out, "malformed messages", totals_.malformed);
    print_sighting(out, "ciphered NAS messages", totals_.ciphered);
    if (captures.encrypted_rrc != 0) {
        out << indent << std::left << std::setw(name_width) << "encrypted RRC signalling"
            << pluralise(captures.encrypted_rrc, "packet") << '\n';
    }
}

void summary::print_values(std::ostream& out) const {
    if (totals_.values.empty()) {
        return;
    }
    out << "\nvalues, and the records that changed them\n";
    for (const auto& [name, history] : totals_.values) {
        std::string text;
        for (const auto& [record, value] : history.first) {
            text += (text.empty() ? "" : ", ") + printable(value) + " (" + in_record(record) + ')';
        }
        if (history.changes > kept_changes) {
            text += ", ... " + printable(history.last.value) + " (" +
                    in_record(history.last.record) + "; " + std::to_string(history.changes) +
                    " changes)";
        }
        out << indent << std::left << std::setw(name_width) << printable(name);
        print_wrapped(out, text, indent.size() + name_width,
                      std::string(indent.size() + name_width, ' '));
    }
}

void summary::print_diagnostics(std::ostream& out) const {
    if (totals_.diagnostics.empty()) {
        return;
    }
    out << "\nfailures and log messages\n";
    for (const auto& [text, entry] : totals_.diagnostics) {
        print_wrapped(out,
                      std::to_string(entry.count) + " x " + printable(text) + " (first in " +
                          in_record(entry.first_record) + ')',
                      indent);
        print_wrapped(out, entry.help, "        ");
    }
}

void summary::print_profile(std::ostream& out, const profile_file& profile) const {
    const std::string heading = "profile " + printable(text_of(profile.path()));
    out << '\n' << heading;
    if (profile.written()) {
        out << '\n';
        print_members(out, profile.read());
        return;
    }
    const auto obstacle = profile.obstacle();
    const std::string reason = obstacle ? "the path can't be written (" + *obstacle + ")"
                                        : "the records did not give both idrx_int and idrx_reps";
    print_wrapped(out, ": not written by this run: " + reason, columns_of(heading), indent);
    if (!obstacle) {
        print_wrapped(out, reason_for_no_profile(totals_), indent);
    }
}

std::string reason_for_no_profile(const run_totals& totals) {
    const auto saw_channel = [&totals](std::string_view name) {
        return std::ranges::any_of(
            totals.messages, [name](const auto& entry) { return entry.first.starts_with(name); });
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
    const auto truths = truth_beside(content, totals_.told.sources, totals_.told.settings);
    for (const auto& member : truths) {
        out << indent << std::left << std::setw(name_width) << printable(member.member)
            << std::setw(value_width) << printable(member.value) << in_record(member.record)
            << '\n';
        const std::string mark = member.difference.empty() ? "" : "; differs: ";
        print_wrapped(out, printable(member.truth) + mark + std::string(member.difference),
                      "        ");
    }
    std::string defaults;
    for (const auto& [name, value] : content) {
        if (std::ranges::find(truths, name, &profile_truth::member) == truths.end()) {
            defaults += (defaults.empty() ? "at their defaults: " : ", ") + name + ' ' +
                        (value.empty() ? R"("")" : value);
        }
    }
    print_wrapped(out, printable(defaults), indent);
}

}  // namespace KIVRA::TSHARK::REPLAY
