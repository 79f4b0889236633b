#include "replay/report/formatting.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// 9999-12-31T23:59:59.999999Z.
constexpr std::uint64_t last_iso_8601_time = 253'402'300'799'999'999;

}  // namespace

std::string iso_8601(std::uint64_t timestamp) {
    if (timestamp > last_iso_8601_time) {
        return std::to_string(timestamp) + " us";
    }
    const std::chrono::sys_time<std::chrono::microseconds> time{
        std::chrono::microseconds{timestamp}};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};
    std::ostringstream text;
    text << std::setfill('0') << std::setw(4) << static_cast<int>(date.year()) << '-'
         << std::setw(2) << static_cast<unsigned>(date.month()) << '-' << std::setw(2)
         << static_cast<unsigned>(date.day()) << 'T' << std::setw(2) << clock.hours().count() << ':'
         << std::setw(2) << clock.minutes().count() << ':' << std::setw(2)
         << clock.seconds().count() << '.' << std::setw(6) << clock.subseconds().count() << 'Z';
    return text.str();
}

std::string printable(std::string_view text) {
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xfU]};
        } else {
            result += c;
        }
    }
    return result;
}

void print_wrapped(std::ostream& out, std::string_view text, std::string_view line_start) {
    constexpr std::size_t line_width = 80;
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

std::string pluralise(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace KIVRA::TSHARK::REPLAY
