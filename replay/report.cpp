#include "replay/report.h"

#include <array>
#include <chrono>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// 9999-12-31T23:59:59.999999Z.
constexpr std::uint64_t last_iso_8601_time = 253'402'300'799'999'999;

/// How wide the names of profile members are printed; the longest has 25 characters.
constexpr int member_name_width = 27;

bool is_timing(std::string_view message) {
    return message.starts_with("tshark processing took: ") && message.ends_with("ms");
}

void print_content(std::ostream& out, const profile_content& content) {
    for (const auto& [name, value] : content.told) {
        out << "    " << std::left << std::setw(member_name_width) << printable(name)
            << printable(value) << '\n';
    }
    out << "    and " << content.defaults << " members at their defaults\n";
}

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

void report::start(const std::filesystem::path& plugin_file, const std::string& plugin_version,
                   const std::filesystem::path& tshark_directory) {
    out_ << "plug-in " << printable(plugin_file.string()) << ", version " << plugin_version << '\n'
         << "tshark in " << printable(tshark_directory.string()) << '\n';
    end_block();
}

void report::start_of(const capture& source) {
    out_ << "\ncapture " << printable(source.file().string()) << '\n';
    end_block();
}

void report::result(std::uint64_t number, const record& packet, const outcome& result) {
    out_ << "\nrecord " << number << "  " << iso_8601(packet.timestamp) << "  "
         << (packet.format.empty() ? "(no format)" : printable(packet.format)) << '\n';
    for (const auto& document : result.documents) {
        out_ << document << '\n';
    }
    if (result.failure) {
        out_ << "failed: " << printable(*result.failure) << '\n';
    } else if (result.documents.empty()) {
        out_ << "no result\n";
    }
    for (const auto& [level, text] : result.log) {
        if (!is_timing(text)) {
            out_ << "log (level " << level << "): " << printable(text) << '\n';
        }
    }
    end_block();
}

void report::profile(const profile_file& file) {
    out_ << "\nprofile " << printable(file.path().string());
    if (file.written()) {
        out_ << '\n';
        print_content(out_, file.read());
    } else if (const auto obstacle = file.obstacle()) {
        out_ << ": not written by this run: the path can't be written (" << *obstacle << ")\n";
    } else {
        out_ << ": not written by this run: the records did not give both idrx_int and "
                "idrx_reps\n";
    }
    end_block();
}

void report::end_block() {
    if (!out_.flush()) {
        throw std::runtime_error("can't write the report");
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
