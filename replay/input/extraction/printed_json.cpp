#include "replay/input/extraction/printed_json.h"

#include "analysis/tshark/packet_splitter.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using byte_string = std::vector<std::uint8_t>;

std::uint8_t octet(std::string_view digits) {
    std::uint8_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

byte_string octets(std::string_view hexadecimal) {
    byte_string bytes;
    bytes.reserve(hexadecimal.size() / 2);
    for (std::size_t i = 0; i + 1 < hexadecimal.size(); i += 2) {
        bytes.push_back(octet(hexadecimal.substr(i, 2)));
    }
    return bytes;
}

/// The digits of one layer; null for what is none.
const std::string* digits_of(const printed_json& raw) {
    return raw.is_array() && !raw.empty() ? raw.front().get_ptr<const std::string*>() : nullptr;
}

}  // namespace

printed_json parse_printed(const std::string& text) {
    return printed_json::parse(text, nullptr, /*allow_exceptions=*/false);
}

const printed_json& layers_of(const printed_json& packets) {
    static const printed_json::json_pointer path("/0/_source/layers");
    static const printed_json::json_pointer frame("/0/_source/layers/frame");
    if (!packets.contains(frame)) {
        throw ANALYSIS::not_a_packet();
    }
    return packets.at(path);
}

std::string_view text_of(const printed_json& object, const char* member) {
    const auto found = object.find(member);
    const auto* const text = found == object.end() ? nullptr : found->get_ptr<const std::string*>();
    return text == nullptr ? std::string_view() : *text;
}

std::vector<byte_string> raw_bytes(const printed_json& value) {
    if (const auto* const digits = digits_of(value)) {
        return {octets(*digits)};
    }
    std::vector<byte_string> list;
    for (const auto& element : value) {
        if (const auto* const digits = digits_of(element)) {
            list.push_back(octets(*digits));
        }
    }
    return list;
}

}  // namespace KIVRA::TSHARK::REPLAY
