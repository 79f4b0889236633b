/// The aggregate maximum bit rate of an APN, in one direction.
#pragma once

#include <cstdint>
#include <optional>

namespace KIVRA::TSHARK::REPLAY {

/// The octets of one direction; 0 for those that the element does not have.
struct ambr_octets {
    std::uint8_t rate = 0;
    std::uint8_t extended = 0;
    std::uint8_t extended_2 = 0;
};

/// 3GPP TS 24.301, 9.9.4.2 (APN aggregate maximum bit rate), in kbit/s.
/// @return nothing for reserved octets: 0 as the rate, above 250 extended, 255 as extended-2
std::optional<std::uint32_t> ambr_kbps(ambr_octets octets);

/// 3GPP TS 24.301, 9.9.4.29 (extended APN aggregate maximum bit rate), in Mbit/s.
/// @return nothing for the units 0 to 2, with which the value is not used
std::optional<std::uint64_t> extended_ambr_mbps(std::uint8_t unit, std::uint16_t value);

}  // namespace KIVRA::TSHARK::REPLAY
