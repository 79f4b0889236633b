#include "replay/report/run_totals.h"

#include "replay/report/diagnostic_help.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

void count(tally& counts, const outcome& result) {
    ++counts.records;
    counts.with_result += result.document.is_null() ? 0 : 1;
    counts.failed += result.failure ? 1 : 0;
}

template <typename Counted>
void note(Counted& seen, std::uint64_t number) {
    if (seen.count++ == 0) {
        seen.first_record = number;
    }
}

void note_value(value_history& history, std::uint64_t number, const std::string& value) {
    if (history.changes != 0 && history.last.value == value) {
        return;
    }
    ++history.changes;
    history.last = {number, value};
    if (history.first.size() < kept_changes) {
        history.first.push_back(history.last);
    }
}

void note_diagnostic(diagnostic& entry, std::uint64_t number, std::string_view help) {
    note(entry, number);
    entry.help = help;
}

}  // namespace

void run_totals::add(std::uint64_t number, const trace_record& record, const outcome& result,
                     const std::vector<detail_value>& details) {
    count(all, result);
    count(formats[record.format], result);
    ++messages[result.message.name];
    if (result.message.is_malformed) {
        note(malformed, number);
    }
    if (result.message.is_ciphered) {
        note(ciphered, number);
    }
    for (const auto& [name, value] : details) {
        note_value(values[name], number, value);
    }
    if (result.failure) {
        note_diagnostic(diagnostics[result.failure->text], number, help_for(*result.failure));
    }
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            note_diagnostic(diagnostics[message.text], number, help_for(message));
        }
    }
    told.add(number, record, result);
}

}  // namespace KIVRA::TSHARK::REPLAY
