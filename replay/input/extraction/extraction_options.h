/// What the user says about captures that tshark reads.
#pragma once

#include <string>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

/// Link types for private use, as libpcap numbers them (DLT_USER0 to DLT_USER15).
constexpr int first_user_link_type = 147;
constexpr int last_user_link_type = 162;

/// Wireshark's number of the first of them (WTAP_ENCAP_USER0, wiretap/wtap.h).
constexpr int first_user_encapsulation = 45;

/// What the packets of such a link type hold.
struct user_link_type {
    int number = first_user_link_type;
    /// The dissector's name.
    std::string protocol = {};
};

struct extraction_options {
    std::vector<user_link_type> user_link_types = {};
    /// Further arguments for tshark, each as it stands.
    std::vector<std::string> tshark_options = {};
};

}  // namespace KIVRA::TSHARK::REPLAY
