/// The names of the messages of EPS mobility management.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

struct emm_message {
    std::uint8_t type;
    std::string_view name;
};

/// 3GPP TS 24.301, 9.8 (message type), table 9.8.1.
inline constexpr std::array<emm_message, 32> emm_messages{{
    {0x41, "Attach request"},
    {0x42, "Attach accept"},
    {0x43, "Attach complete"},
    {0x44, "Attach reject"},
    {0x45, "Detach request"},
    {0x46, "Detach accept"},
    {0x48, "Tracking area update request"},
    {0x49, "Tracking area update accept"},
    {0x4a, "Tracking area update complete"},
    {0x4b, "Tracking area update reject"},
    {0x4c, "Extended service request"},
    {0x4d, "Control plane service request"},
    {0x4e, "Service reject"},
    {0x4f, "Service accept"},
    {0x50, "GUTI reallocation command"},
    {0x51, "GUTI reallocation complete"},
    {0x52, "Authentication request"},
    {0x53, "Authentication response"},
    {0x54, "Authentication reject"},
    {0x55, "Identity request"},
    {0x56, "Identity response"},
    {0x5c, "Authentication failure"},
    {0x5d, "Security mode command"},
    {0x5e, "Security mode complete"},
    {0x5f, "Security mode reject"},
    {0x60, "EMM status"},
    {0x61, "EMM information"},
    {0x62, "Downlink NAS transport"},
    {0x63, "Uplink NAS transport"},
    {0x64, "CS service notification"},
    {0x68, "Downlink generic NAS transport"},
    {0x69, "Uplink generic NAS transport"},
}};

}  // namespace KIVRA::TSHARK::REPLAY
