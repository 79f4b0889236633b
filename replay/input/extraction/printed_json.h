/// Members of tshark's JSON output (-T json -x).
#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {

/// Keeps the order of members, which is that of the packet's layers.
using printed_json = nlohmann::ordered_json;

/// What tshark prints for a packet; nothing valid for a text that is no JSON.
printed_json parse_printed(const std::string& text);

/// "layers" of the first packet.
/// @param packets an array; outlives the result
/// @throws ANALYSIS::not_a_packet when it holds no packet with a layer "frame"
const printed_json& layers_of(const printed_json& packets);

/// A text; empty for a member of another kind.
std::string_view text_of(const printed_json& object, const char* member);

/// A decimal number in a text; 0 for a member of another kind.
template <typename Number>
Number number_of(const printed_json& object, const char* member) {
    Number number = 0;
    const auto text = text_of(object, member);
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The bytes in a member whose name ends in "_raw", one string of bytes for each layer of the name.
/// @param value [HEX, POSITION, LENGTH, BITMASK, TYPE], or a list of such
std::vector<std::vector<std::uint8_t>> raw_bytes(const printed_json& value);

}  // namespace KIVRA::TSHARK::REPLAY
