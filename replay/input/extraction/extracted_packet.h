/// What a packet of tshark's JSON output holds for a host: messages, as bytes with the names of
/// their dissectors.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "replay/record/record_failure.h"

namespace KIVRA::TSHARK::REPLAY {

struct extracted_message {
    /// The dissector's name, or "ip".
    std::string format = {};
    std::vector<std::uint8_t> payload = {};
    /// It is a NAS message that stands inside an RRC message, which comes before it.
    bool is_inside_rrc = false;
};

struct extracted_packet {
    /// In the capture, from 1.
    std::uint64_t number = 0;
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// In their order in the packet.
    std::vector<extracted_message> messages = {};
    /// Why none of the messages can be run, when it is so.
    std::optional<record_failure> failure = {};
    /// There are messages inside layers that tshark was told not to print.
    bool hides_messages = false;
    /// It holds RRC signalling that PDCP has ciphered, and no message.
    bool is_encrypted = false;
    /// The link type for private use that the packet has.
    std::optional<int> user_link_type = {};
};

/// Finds the outermost messages.
/// @param text a JSON array with one packet as tshark prints it (-T json -x --no-duplicate-keys):
///     bytes stand in members whose names end in "_raw", as [HEX, POSITION, LENGTH, BITMASK, TYPE]
///     or a list of such
/// @throws ANALYSIS::not_a_packet for a text that is no such packet
extracted_packet extract_messages(const std::string& text);

}  // namespace KIVRA::TSHARK::REPLAY
