/// The name of a NAS message of EPS.
#pragma once

#include <nlohmann/json.hpp>

#include "replay/record/message_description.h"

namespace KIVRA::TSHARK::REPLAY {

/// The EMM message and the ESM message in it, as far as they can be read.
/// @param layer "nas-eps" of a packet
message_description describe_nas_message(const nlohmann::json& layer);

}  // namespace KIVRA::TSHARK::REPLAY
