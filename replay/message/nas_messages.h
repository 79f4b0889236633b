/// The names of NAS messages: of EPS mobility management (EMM) and session management (ESM).
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

struct nas_message {
    std::uint8_t type;
    std::string_view name;
};

/// 3GPP TS 24.301, 9.8 (message type), table 9.8.1.
inline constexpr std::array<nas_message, 32> emm_messages{{
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

/// 3GPP TS 24.301, 9.8 (message type), table 9.8.2.
inline constexpr std::array<nas_message, 27> esm_messages{{
    {0xc1, "Activate default EPS bearer context request"},
    {0xc2, "Activate default EPS bearer context accept"},
    {0xc3, "Activate default EPS bearer context reject"},
    {0xc5, "Activate dedicated EPS bearer context request"},
    {0xc6, "Activate dedicated EPS bearer context accept"},
    {0xc7, "Activate dedicated EPS bearer context reject"},
    {0xc9, "Modify EPS bearer context request"},
    {0xca, "Modify EPS bearer context accept"},
    {0xcb, "Modify EPS bearer context reject"},
    {0xcd, "Deactivate EPS bearer context request"},
    {0xce, "Deactivate EPS bearer context accept"},
    {0xd0, "PDN connectivity request"},
    {0xd1, "PDN connectivity reject"},
    {0xd2, "PDN disconnect request"},
    {0xd3, "PDN disconnect reject"},
    {0xd4, "Bearer resource allocation request"},
    {0xd5, "Bearer resource allocation reject"},
    {0xd6, "Bearer resource modification request"},
    {0xd7, "Bearer resource modification reject"},
    {0xd9, "ESM information request"},
    {0xda, "ESM information response"},
    {0xdb, "Notification"},
    {0xdc, "ESM dummy message"},
    {0xe8, "ESM status"},
    {0xe9, "Remote UE report"},
    {0xea, "Remote UE report response"},
    {0xeb, "ESM data transport"},
}};

}  // namespace KIVRA::TSHARK::REPLAY
