#include "replay/input/link_types.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A packet that is an IP packet from its first byte on.
captured_message read_raw_ip(std::span<const std::uint8_t> packet) {
    return {"ip", packet};
}

constexpr std::array<link_type, 4> link_types{{
    {101, 7, read_raw_ip},
    {228, 129, read_raw_ip},
    {229, 130, read_raw_ip},
    {252, 155, read_exported_pdu},
}};

const link_type* find(int number, int link_type::*column) {
    const auto* const entry = std::ranges::find(link_types, number, column);
    return entry == link_types.end() ? nullptr : entry;
}

}  // namespace

const link_type* link_type_of_dlt(int number) {
    // libpcap gives raw IP a number of its own (DLT_RAW).
    constexpr int raw_ip = 12;
    return find(number == raw_ip ? 101 : number, &link_type::number);
}

const link_type* link_type_of_encapsulation(int number) {
    return find(number, &link_type::encapsulation);
}

bool is_exported_pdu(const link_type& type) {
    return type.read == read_exported_pdu;
}

trace_record record_of(const link_type& type, std::uint64_t timestamp,
                       std::span<const std::uint8_t> packet, std::size_t original_size) {
    trace_record record{.timestamp = timestamp, .payload = packet};
    try {
        auto message = type.read(packet);
        record.format = std::move(message.dissector);
        record.payload = message.bytes;
    } catch (const std::runtime_error& error) {
        record.failure = {failure_kind::malformed_packet, error.what()};
    }
    if (packet.size() < original_size) {
        record.failure = cut_short(packet.size(), original_size);
    }
    return record;
}

}  // namespace KIVRA::TSHARK::REPLAY
