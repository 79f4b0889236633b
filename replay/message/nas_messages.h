/// The names of NAS messages: of EPS mobility management (EMM) and session management (ESM).
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "replay/record/message_description.h"

namespace KIVRA::TSHARK::REPLAY {

struct nas_message {
    std::uint8_t type;
    std::string_view name;
    /// Unknown where both sides send it.
    message_direction direction;
};

/// 3GPP TS 24.301, 9.8 (message type), table 9.8.1; the directions are of 8.2.
inline constexpr std::array<nas_message, 32> emm_messages{{
    {0x41, "Attach request", message_direction::uplink},
    {0x42, "Attach accept", message_direction::downlink},
    {0x43, "Attach complete", message_direction::uplink},
    {0x44, "Attach reject", message_direction::downlink},
    {0x45, "Detach request", message_direction::unknown},
    {0x46, "Detach accept", message_direction::unknown},
    {0x48, "Tracking area update request", message_direction::uplink},
    {0x49, "Tracking area update accept", message_direction::downlink},
    {0x4a, "Tracking area update complete", message_direction::uplink},
    {0x4b, "Tracking area update reject", message_direction::downlink},
    {0x4c, "Extended service request", message_direction::uplink},
    {0x4d, "Control plane service request", message_direction::uplink},
    {0x4e, "Service reject", message_direction::downlink},
    {0x4f, "Service accept", message_direction::downlink},
    {0x50, "GUTI reallocation command", message_direction::downlink},
    {0x51, "GUTI reallocation complete", message_direction::uplink},
    {0x52, "Authentication request", message_direction::downlink},
    {0x53, "Authentication response", message_direction::uplink},
    {0x54, "Authentication reject", message_direction::downlink},
    {0x55, "Identity request", message_direction::downlink},
    {0x56, "Identity response", message_direction::uplink},
    {0x5c, "Authentication failure", message_direction::uplink},
    {0x5d, "Security mode command", message_direction::downlink},
    {0x5e, "Security mode complete", message_direction::uplink},
    {0x5f, "Security mode reject", message_direction::uplink},
    {0x60, "EMM status", message_direction::unknown},
    {0x61, "EMM information", message_direction::downlink},
    {0x62, "Downlink NAS transport", message_direction::downlink},
    {0x63, "Uplink NAS transport", message_direction::uplink},
    {0x64, "CS service notification", message_direction::downlink},
    {0x68, "Downlink generic NAS transport", message_direction::downlink},
    {0x69, "Uplink generic NAS transport", message_direction::uplink},
}};

/// 3GPP TS 24.301, 9.8 (message type), table 9.8.2; the directions are of 8.3.
inline constexpr std::array<nas_message, 27> esm_messages{{
    {0xc1, "Activate default EPS bearer context request", message_direction::downlink},
    {0xc2, "Activate default EPS bearer context accept", message_direction::uplink},
    {0xc3, "Activate default EPS bearer context reject", message_direction::uplink},
    {0xc5, "Activate dedicated EPS bearer context request", message_direction::downlink},
    {0xc6, "Activate dedicated EPS bearer context accept", message_direction::uplink},
    {0xc7, "Activate dedicated EPS bearer context reject", message_direction::uplink},
    {0xc9, "Modify EPS bearer context request", message_direction::downlink},
    {0xca, "Modify EPS bearer context accept", message_direction::uplink},
    {0xcb, "Modify EPS bearer context reject", message_direction::uplink},
    {0xcd, "Deactivate EPS bearer context request", message_direction::downlink},
    {0xce, "Deactivate EPS bearer context accept", message_direction::uplink},
    {0xd0, "PDN connectivity request", message_direction::uplink},
    {0xd1, "PDN connectivity reject", message_direction::downlink},
    {0xd2, "PDN disconnect request", message_direction::uplink},
    {0xd3, "PDN disconnect reject", message_direction::downlink},
    {0xd4, "Bearer resource allocation request", message_direction::uplink},
    {0xd5, "Bearer resource allocation reject", message_direction::downlink},
    {0xd6, "Bearer resource modification request", message_direction::uplink},
    {0xd7, "Bearer resource modification reject", message_direction::downlink},
    {0xd9, "ESM information request", message_direction::downlink},
    {0xda, "ESM information response", message_direction::uplink},
    {0xdb, "Notification", message_direction::downlink},
    {0xdc, "ESM dummy message", message_direction::unknown},
    {0xe8, "ESM status", message_direction::unknown},
    {0xe9, "Remote UE report", message_direction::uplink},
    {0xea, "Remote UE report response", message_direction::downlink},
    {0xeb, "ESM data transport", message_direction::unknown},
}};

}  // namespace KIVRA::TSHARK::REPLAY
