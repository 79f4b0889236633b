/// The name of an LTE RRC message.
#pragma once

#include <nlohmann/json.hpp>

#include "replay/record/message_description.h"

namespace KIVRA::TSHARK::REPLAY {

/// Channel, message, and the blocks of system information in it, as "BCCH-DL-SCH BR,
/// SystemInformation-BR-r13 [SIB2]".
/// @param layer "lte_rrc" of a packet
message_description describe_rrc_message(const nlohmann::json& layer);

}  // namespace KIVRA::TSHARK::REPLAY
