#include "replay/input/link_types.h"

#include <algorithm>
#include <array>

#include <pcap/dlt.h>

#include "replay/input/exported_pdu.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A packet that is an IP packet from its first byte on.
captured_message read_raw_ip(std::span<const std::uint8_t> packet) {
    return {"ip", packet};
}

struct link_type_entry {
    int link_type;
    packet_reader* read;
};

/// The registry of link types (tcpdump.org/linktypes.html), in libpcap's numbers.
constexpr std::array<link_type_entry, 4> link_types{{
    {DLT_RAW, read_raw_ip},                        // 101 in files
    {DLT_IPV4, read_raw_ip},                       // 228
    {DLT_IPV6, read_raw_ip},                       // 229
    {DLT_WIRESHARK_UPPER_PDU, read_exported_pdu},  // 252
}};

}  // namespace

packet_reader* packet_reader_of(int link_type) {
    const auto* const entry = std::ranges::find(link_types, link_type, &link_type_entry::link_type);
    return entry == link_types.end() ? nullptr : entry->read;
}

}  // namespace KIVRA::TSHARK::REPLAY
