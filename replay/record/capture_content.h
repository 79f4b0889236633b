/// What a capture holds besides its records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

struct protocol_count {
    /// As Wireshark's display filters name the protocol.
    std::string name;
    std::uint64_t packets = 0;
};

struct capture_content {
    std::uint64_t packets = 0;
    /// The protocols above the frame, in the order of their layers; empty where nobody looked.
    std::vector<protocol_count> protocols = {};
    /// Packets of RRC signalling that PDCP has ciphered; they are no records.
    std::uint64_t encrypted_rrc = 0;
    /// What kept records from being read, for people; empty when all of them were.
    std::vector<std::string> incomplete = {};
};

/// "1,370 packets: tcp 1,195, sctp 83; no LTE RRC or NAS", for a capture without a record.
std::string description_of(const capture_content& content);

}  // namespace KIVRA::TSHARK::REPLAY
