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

constexpr std::size_t line_width = 80;

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

std::size_t columns_of(std::string_view text) {
    constexpr unsigned char mark = 0xc0;
    constexpr unsigned char continuation = 0x80;
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & mark) != continuation; }));
}

void print_wrapped(std::ostream& out, std::string_view text, std::size_t column,
                   std::string_view line_start) {
    while (!text.empty()) {
        // To the last blank that leaves the line within its width; a word that is longer stays
        // whole.
        auto end = text.find(' ');
        for (auto next = end; next != std::string_view::npos;) {
            next = text.find(' ', next + 1);
            if (column + columns_of(text.substr(0, next)) > line_width) {
                break;
            }
            end = next;
        }
        out << text.substr(0, end) << '\n';
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!text.empty()) {
            out << line_start;
            column = line_start.size();
        }
    }
}

void print_wrapped(std::ostream& out, std::string_view text, std::string_view line_start) {
    if (!text.empty()) {
        out << line_start;
        print_wrapped(out, text, line_start.size(), line_start);
    }
}

std::string pluralise(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace KIVRA::TSHARK::REPLAY
