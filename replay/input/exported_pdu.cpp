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

constexpr std::size_t tag_header_size = 4;

unsigned big_endian_16(std::span<const std::uint8_t> bytes) {
    return static_cast<unsigned>(bytes[0]) << 8U | bytes[1];
}

/// The name without the zero bytes that pad it.
std::string name_in(std::span<const std::uint8_t> value) {
    return {value.begin(), std::ranges::find(value, 0)};
}

}  // namespace

captured_message read_exported_pdu(std::span<const std::uint8_t> packet) {
    std::string dissector;
    for (auto rest = packet; rest.size() >= tag_header_size;) {
        const unsigned type = big_endian_16(rest);
        const std::size_t length = big_endian_16(rest.subspan(2));
        rest = rest.subspan(tag_header_size);
        if (type == end_of_tags) {
            if (dissector.empty()) {
                throw std::runtime_error("no dissector name among the packet's tags");
            }
            return {std::move(dissector), rest};
        }
        if (length > rest.size()) {
            break;
        }
        if (type == dissector_name) {
            dissector = name_in(rest.first(length));
        }
        rest = rest.subspan(length);
    }
    throw std::runtime_error("broken packet: its tags run past its end");
}

}  // namespace KIVRA::TSHARK::REPLAY
