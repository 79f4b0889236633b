/// The link types of captures whose packets are records as they stand, and what reads a packet of
/// each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "replay/input/exported_pdu.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// Finds the message in a packet.
/// @throws std::runtime_error when the packet is malformed
using packet_reader = captured_message(std::span<const std::uint8_t> packet);

struct link_type {
    /// As files number it (tcpdump.org/linktypes.html).
    int number = 0;
    /// As Wireshark numbers it (wiretap/wtap.h).
    int encapsulation = 0;
    packet_reader* read = nullptr;
};

/// @param number as libpcap gives it (DLT_...)
/// @return null for a link type whose packets are no records
const link_type* link_type_of_dlt(int number);

/// @return null for an encapsulation whose packets are no records
const link_type* link_type_of_encapsulation(int number);

bool is_exported_pdu(const link_type& type);

/// @param packet as far as it was captured; the record refers to it
/// @param original_size of the packet in bytes
trace_record record_of(const link_type& type, std::uint64_t timestamp,
                       std::span<const std::uint8_t> packet, std::size_t original_size);

}  // namespace KIVRA::TSHARK::REPLAY
