#include "replay/table.h"

#include <iomanip>
#include <ostream>
#include <string_view>

#include "replay/text.h"

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

std::string joined(const learnt& said) {
    std::string text;
    for (const auto& [name, value] : said.values) {
        text.append(text.empty() ? "" : ", ").append(name).append(1, ' ').append(value);
    }
    return text;
}

}  // namespace

void table::head() {
    out_ << std::right << std::setw(number_width) << "record"
         << "  " << std::left << std::setw(time_width) << "time"
         << "  " << std::setw(format_width) << "format"
         << "  learnt\n";
}

void table::row(std::uint64_t number, const record& packet, const outcome& result,
                const learnt& said) {
    const auto painted = [this](std::string_view colour, const std::string& text) {
        return coloured_ ? std::string(colour) + text + std::string(plain) : text;
    };
    out_ << std::right << std::setw(number_width) << number << "  " << std::left
         << std::setw(time_width) << iso_8601(packet.timestamp) << "  " << std::setw(format_width)
         << printable(packet.format);

    std::string_view separator = first_separator;
    const auto add = [&](const std::string& text) {
        out_ << separator << text;
        separator = further_separator;
    };
    if (result.failure) {
        add(painted(red, "failed: " + printable(*result.failure)));
    }
    for (const auto& message : said.messages) {
        add(painted(bold, printable(message)));
    }
    if (!said.values.empty()) {
        add(printable(joined(said)));
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
