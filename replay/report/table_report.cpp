#include "replay/report/table_report.h"

#include <iomanip>
#include <ostream>

#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr int number_width = 9;
constexpr int time_width = 27;

constexpr std::string_view separator = "; ";

constexpr std::string_view bold = "\033[1m";
constexpr std::string_view red = "\033[31m";
constexpr std::string_view yellow = "\033[33m";
constexpr std::string_view plain = "\033[0m";

std::string joined(const std::vector<detail_value>& details) {
    std::string text;
    for (const auto& [name, value] : details) {
        text.append(text.empty() ? "" : ", ").append(name).append(1, ' ').append(value);
    }
    return text;
}

/// The name with what keeps the message from being read.
std::string marked_name(const message_description& message) {
    return message.name + (message.is_malformed ? " [malformed]" : "");
}

}  // namespace

void table_report::begin(const std::string& heading) {
    out_ << printable(heading) << "\n\n";
    print({"record", "time", "message"});
}

void table_report::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    const auto details = details_of(result);
    summary_.add(number, record, result, details);
    if (all_ || novelty_.is_new(result, details)) {
        finish_run();
        print(row_of(number, record, result, details));
        return;
    }
    if (run_.size() == 0) {
        first_of_run_ = row_of(number, record, result, details);
    }
    run_.add(number, result.message.name);
}

void table_report::end(const capture_content& captures) {
    finish_run();
    summary_.print(out_, profile_, captures);
}

/// A run of one is a record like any other.
void table_report::finish_run() {
    if (run_.size() == 1) {
        print(first_of_run_);
    } else if (run_.size() > 1) {
        print({run_.numbers(), "", printable(run_.text())});
    }
    run_ = {};
}

table_report::row table_report::row_of(std::uint64_t number, const trace_record& record,
                                       const outcome& result,
                                       const std::vector<detail_value>& details) const {
    const auto name = printable(marked_name(result.message));
    std::string text = result.message.is_procedure ? painted(bold, name) : name;
    const auto add = [&text](const std::string& more) { text.append(separator).append(more); };
    if (result.failure) {
        add(painted(red, "failed: " + printable(result.failure->text)));
    }
    if (!details.empty()) {
        add(printable(joined(details)));
    }
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            add(painted(yellow, "log: " + printable(message.text)));
        }
    }
    return {std::to_string(number), iso_8601(record.timestamp), text};
}

std::string table_report::painted(std::string_view colour, const std::string& text) const {
    return coloured_ ? std::string(colour) + text + std::string(plain) : text;
}

void table_report::print(const row& line) {
    out_ << std::right << std::setw(number_width) << line.number << "  " << std::left
         << std::setw(time_width) << line.time << "  " << line.text << '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
