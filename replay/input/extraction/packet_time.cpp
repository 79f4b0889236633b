#include "replay/input/extraction/packet_time.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::uint64_t microseconds_a_second = 1'000'000;

std::uint64_t number_in(std::string_view digits) {
    std::uint64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

/// The first six digits behind the point.
std::uint64_t microseconds_in(std::string_view fraction) {
    constexpr std::size_t digits = 6;
    std::string text(fraction.substr(0, digits));
    text.resize(digits, '0');
    return number_in(text);
}

/// "2025-11-25T19:46:40" as seconds since 1970-01-01.
std::uint64_t seconds_of_date(std::string_view text) {
    using namespace std::chrono;
    constexpr std::size_t length = 19;
    if (text.size() != length) {
        return 0;
    }
    const auto field = [text](std::size_t place, std::size_t size) {
        return static_cast<int>(number_in(text.substr(place, size)));
    };
    const auto month_and_day =
        month{static_cast<unsigned>(field(5, 2))} / day{static_cast<unsigned>(field(8, 2))};
    const auto time = sys_days{year{field(0, 4)} / month_and_day} + hours{field(11, 2)} +
                      minutes{field(14, 2)} + seconds{field(17, 2)};
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>(duration_cast<seconds>(time.time_since_epoch()).count(), 0));
}

}  // namespace

std::uint64_t packet_time(std::string_view text) {
    const bool is_date = text.find('T') != std::string_view::npos;
    const auto point = std::min(text.find_first_of(".Z"), text.size());
    const auto whole = text.substr(0, point);
    const auto fraction = text.substr(std::min(point + 1, text.size()));
    const auto seconds = is_date ? seconds_of_date(whole) : number_in(whole);
    const auto digits = fraction.substr(0, fraction.find_first_not_of("0123456789"));
    return seconds * microseconds_a_second + microseconds_in(digits);
}

}  // namespace KIVRA::TSHARK::REPLAY
