/// Which settings end without a word: by a message that leaves them out.
#pragma once

#include <string_view>

#include "replay/record/setting.h"

namespace KIVRA::TSHARK::REPLAY {

/// What every accept of an attach or a tracking area update grants anew or not at all, and what
/// goes with the registration (3GPP TS 24.301, 5.3.11, 5.3.12, 5.5.1.2.4 and 5.5.3.2.4).
bool is_granted_anew(std::string_view name, setting_role role);

/// What a release or a reject of a connection says of itself (36.331, 5.3.8 and 5.3.3.8).
bool is_of_connection_end(std::string_view name, setting_role role);

/// What is gone with the connected-mode DRX that is released (36.331, 5.3.10.4).
bool is_of_connected_drx(std::string_view name, setting_role role);

/// What only some cells have in their SystemInformationBlockType1 (36.331, 6.2.2).
bool is_optional_of_cell(std::string_view name, setting_role role);

}  // namespace KIVRA::TSHARK::REPLAY
