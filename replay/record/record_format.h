/// The formats of records: names of Wireshark's dissectors, and "ip".
#pragma once

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// Whether records of the format are analysed: NAS messages of EPS, LTE RRC messages of any
/// channel, and IP packets.
bool is_analysed(std::string_view format);

/// The analysed format that a format is another spelling or a kind of, as "nas-eps" for
/// "nas-eps_plain" and "lte_rrc.pcch" for "LTE-RRC.PCCH"; empty when there is none.
std::string_view nearest_analysed(std::string_view format);

}  // namespace KIVRA::TSHARK::REPLAY
