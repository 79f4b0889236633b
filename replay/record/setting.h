/// A setting of the modem or the network, in the units of 3GPP.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The radio access, which decides how some NAS values are read.
enum class radio_access : std::uint8_t {
    unknown,
    /// E-UTRA and LTE-M.
    wb_s1,
    /// NB-IoT.
    nb_s1,
};

enum class setting_role : std::uint8_t {
    /// What the modem asked the network for.
    requested,
    /// What the network answered, rejects included.
    granted,
    /// What the cell tells every modem.
    broadcast,
    /// What the cell told this modem for its connection.
    configured,
};

struct setting {
    /// The same for requested and granted, so that the two can be compared.
    std::string name;
    /// A number in the unit, or words such as "deactivated".
    std::string value;
    /// Empty for words, counts and raw values; static.
    std::string_view unit;
    setting_role role;
    /// Where 3GPP defines the values, such as "24.008, 10.5.5.32"; static.
    std::string_view clause;
    /// Whether the value stands for what the modem or the network meant. It does not where the
    /// clause reserves it (the value is tshark's own then), nor where it depends on the radio
    /// access and that is not known.
    bool known = true;

    bool operator==(const setting&) const = default;
};

/// "requested", "granted", "broadcast" or "configured"; static.
constexpr std::string_view text_of(setting_role role) {
    switch (role) {
        case setting_role::requested:
            return "requested";
        case setting_role::granted:
            return "granted";
        case setting_role::broadcast:
            return "broadcast";
        case setting_role::configured:
            break;
    }
    return "configured";
}

}  // namespace KIVRA::TSHARK::REPLAY
