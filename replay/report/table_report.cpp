#include "replay/report/table_report.h"

#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr int number_width = 7;
constexpr int time_width = 27;
/// The longest name of a dissector for LTE RRC, "lte_rrc.bcch_dl_sch_br".
constexpr int format_width = 22;

constexpr std::string_view first_separator = "  ";
constexpr std::string_view further_separator = "; ";

constexpr std::string_view bold = "\033[1m";
constexpr std::string_view red = "\033[31m";
constexpr std::string_view yellow = "\033[33m";
constexpr std::string_view plain = "\033[0m";

std::string joined(const record_details& details) {
    std::string text;
    for (const auto& [name, value] : details.values) {
        text.append(text.empty() ? "" : ", ").append(name).append(1, ' ').append(value);
    }
    return text;
}

}  // namespace

void table_report::begin(const std::string& heading) {
    out_ << printable(heading) << "\n\n"
         << std::right << std::setw(number_width) << "record"
         << "  " << std::left << std::setw(time_width) << "time"
         << "  " << std::setw(format_width) << "format"
         << "  details\n";
}

void table_report::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    const auto details = details_of(result.document);
    summary_.add(number, record, result, details);
    print_row(number, record, result, details);
}

void table_report::end() {
    summary_.print(out_, profile_);
}

void table_report::print_row(std::uint64_t number, const trace_record& record,
                             const outcome& result, const record_details& details) {
    const auto painted = [this](std::string_view colour, const std::string& text) {
        return coloured_ ? std::string(colour) + text + std::string(plain) : text;
    };
    out_ << std::right << std::setw(number_width) << number << "  " << std::left
         << std::setw(time_width) << iso_8601(record.timestamp) << "  " << std::setw(format_width)
         << printable(record.format);

    std::string_view separator = first_separator;
    const auto add = [&](const std::string& text) {
        out_ << separator << text;
        separator = further_separator;
    };
    if (result.failure) {
        add(painted(red, "failed: " + printable(result.failure->text)));
    }
    for (const auto& message : details.messages) {
        add(painted(bold, printable(message)));
    }
    if (!details.values.empty()) {
        add(printable(joined(details)));
    }
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            add(painted(yellow, "log: " + printable(message.text)));
        }
    }
    if (separator == first_separator) {
        add("nothing");
    }
    out_ << '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
