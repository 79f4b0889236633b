#include "replay/trace/setting_endings.h"

#include <algorithm>
#include <array>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr auto of_connection_end = std::to_array<std::string_view>(
    {"release cause", "extended wait time", "extended wait time, control plane data", "redirection",
     "redirection's carrier", "wait time"});

constexpr auto of_connected_drx = std::to_array<std::string_view>(
    {"long DRX cycle", "short DRX cycle", "short DRX cycle timer", "on-duration timer",
     "DRX inactivity timer", "DRX retransmission timer", "DRX UL retransmission timer"});

constexpr auto optional_of_cell =
    std::to_array<std::string_view>({"eDRX allowed", "hyper-SFN", "p-Max", "further band"});

}  // namespace

bool is_granted_anew(std::string_view name, setting_role role) {
    // Some have the radio access behind them.
    return role == setting_role::granted &&
           (name == "T3324" || name == "T3412 extended" || name.starts_with("eDRX cycle") ||
            name.starts_with("paging time window") || name.starts_with("UE-specific DRX cycle"));
}

bool is_of_connection_end(std::string_view name, setting_role role) {
    return role == setting_role::configured && std::ranges::count(of_connection_end, name) != 0;
}

bool is_of_connected_drx(std::string_view name, setting_role role) {
    return role == setting_role::configured && std::ranges::count(of_connected_drx, name) != 0;
}

bool is_optional_of_cell(std::string_view name, setting_role role) {
    return role == setting_role::broadcast && std::ranges::count(optional_of_cell, name) != 0;
}

}  // namespace KIVRA::TSHARK::REPLAY
