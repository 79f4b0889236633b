#include "replay/input/packet_verdict.h"

#include <stdexcept>

#include "replay/input/exported_pdu.h"
#include "replay/input/ip_signalling.h"
#include "replay/record/record_format.h"

namespace KIVRA::TSHARK::REPLAY {

void packet_verdict::look_at(const link_type& type, std::span<const std::uint8_t> packet) {
    if (!is_exported_pdu(type)) {
        needs_tshark_ = needs_tshark_ || carries_signalling(packet);
    } else if (names_dissector_table(packet)) {
        needs_tshark_ = true;
    } else {
        look_at_name(packet);
    }
}

void packet_verdict::look_at_name(std::span<const std::uint8_t> packet) {
    try {
        const auto name = read_exported_pdu(packet).dissector;
        (is_analysed(name) || !nearest_analysed(name).empty() ? familiar_ : strange_) = true;
    } catch (const std::runtime_error&) {
        // The record says so when its turn comes.
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
