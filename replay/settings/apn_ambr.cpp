#include "replay/settings/apn_ambr.h"

#include <algorithm>
#include <array>

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct ambr_range {
    std::uint8_t first;
    std::uint8_t last;
    /// What `first` stands for, and what each one above it adds, in kbit/s.
    std::uint32_t rate;
    std::uint32_t step;
};

/// Octets 3 and 4.
constexpr std::array<ambr_range, 4> rates{{
    {1, 63, 1, 1},
    {64, 127, 64, 8},
    {128, 254, 576, 64},
    {255, 255, 0, 0},
}};

/// Octets 5 and 6: more than 8,640 kbit/s.
constexpr std::array<ambr_range, 3> extended_rates{{
    {1, 74, 8'700, 100},
    {75, 186, 17'000, 1'000},
    {187, 250, 130'000, 2'000},
}};

template <std::size_t Count>
std::optional<std::uint32_t> rate_of(const std::array<ambr_range, Count>& ranges,
                                     std::uint8_t octet) {
    const auto range = std::ranges::find_if(ranges, [octet](const ambr_range& candidate) {
        return candidate.first <= octet && octet <= candidate.last;
    });
    if (range == ranges.end()) {
        return std::nullopt;
    }
    const auto above = static_cast<std::uint32_t>(octet - range->first);
    return range->rate + above * range->step;
}

}  // namespace

std::optional<std::uint32_t> ambr_kbps(ambr_octets octets) {
    constexpr std::uint32_t step_of_extended_2 = 256'000;
    constexpr std::uint8_t reserved_extended_2 = 255;
    const auto rate = octets.extended == 0 ? rate_of(rates, octets.rate)
                                           : rate_of(extended_rates, octets.extended);
    if (!rate || octets.extended_2 == reserved_extended_2) {
        return std::nullopt;
    }
    return *rate + octets.extended_2 * step_of_extended_2;
}

std::optional<std::uint64_t> extended_ambr_mbps(std::uint8_t unit, std::uint16_t value) {
    // From 4 Mbit/s on, four times as much with each unit but from 256 of one prefix to 1 of the
    // next; what is above the last counts as the last.
    constexpr std::uint8_t first_unit = 3;
    constexpr std::uint8_t last_unit = 21;
    constexpr std::uint8_t units_of_a_prefix = 5;
    if (unit < first_unit) {
        return std::nullopt;
    }
    const unsigned steps = std::min(unit, last_unit) - (first_unit - 1U);
    std::uint64_t factor = 1;
    for (unsigned step = 1; step <= steps; ++step) {
        // 256 Mbit/s, then 1 Gbit/s = 1,000 Mbit/s.
        factor = step % units_of_a_prefix == 0 ? factor / 256 * 1'000 : factor * 4;
    }
    return factor * value;
}

}  // namespace KIVRA::TSHARK::REPLAY
