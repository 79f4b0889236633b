#include "replay/input/exported_pdu.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

// Tag types as Wireshark's wsutil/exported_pdu_tlvs.h lists them.
constexpr unsigned end_of_tags = 0;
constexpr unsigned dissector_name = 12;
constexpr unsigned dissector_table_name = 14;

constexpr std::size_t tag_header_size = 4;

unsigned big_endian_16(std::span<const std::uint8_t> bytes) {
    return static_cast<unsigned>(bytes[0]) << 8U | bytes[1];
}

/// The name without the zero bytes that pad it.
std::string name_in(std::span<const std::uint8_t> value) {
    return {value.begin(), std::ranges::find(value, 0)};
}

/// What the tags of a packet say.
struct tags {
    std::string dissector;
    bool has_table = false;
    std::span<const std::uint8_t> message;
};

/// @throws std::runtime_error when they don't end within the packet
tags read_tags(std::span<const std::uint8_t> packet) {
    tags found;
    for (auto rest = packet; rest.size() >= tag_header_size;) {
        const unsigned type = big_endian_16(rest);
        const std::size_t length = big_endian_16(rest.subspan(2));
        rest = rest.subspan(tag_header_size);
        if (type == end_of_tags) {
            found.message = rest;
            return found;
        }
        if (length > rest.size()) {
            break;
        }
        if (type == dissector_name) {
            found.dissector = name_in(rest.first(length));
        }
        found.has_table = found.has_table || type == dissector_table_name;
        rest = rest.subspan(length);
    }
    throw std::runtime_error("broken packet: its tags run past its end");
}

}  // namespace

captured_message read_exported_pdu(std::span<const std::uint8_t> packet) {
    auto found = read_tags(packet);
    if (found.dissector.empty()) {
        throw std::runtime_error("no dissector name among the packet's tags");
    }
    return {std::move(found.dissector), found.message};
}

bool names_dissector_table(std::span<const std::uint8_t> packet) {
    try {
        const auto found = read_tags(packet);
        return found.has_table && found.dissector.empty();
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
