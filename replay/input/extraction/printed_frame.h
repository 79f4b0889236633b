/// A packet of tshark's JSON output as it stands in the capture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

struct printed_frame {
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// The link type in Wireshark's numbers (wiretap/wtap.h).
    int encapsulation = 0;
    /// What was captured.
    std::vector<std::uint8_t> bytes = {};
    std::size_t original_size = 0;
};

/// @param text a JSON array with one packet as tshark prints it (-T json -x)
/// @throws ANALYSIS::not_a_packet for a text that is no such packet
printed_frame read_frame(const std::string& text);

}  // namespace KIVRA::TSHARK::REPLAY
