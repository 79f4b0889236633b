/// From a packet of tshark's output, or a record that tshark does not see, to what people call it.
#pragma once

#include <nlohmann/json.hpp>

#include "replay/record/message_description.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// @param packet with "_source" and "layers"; whatever else it looks like, there is a description
message_description describe_packet(const nlohmann::json& packet);

/// Adds what the NAS message says that an RRC message carries, for where it is no record of its
/// own.
/// @param packet as described
void add_carried_nas(const nlohmann::json& packet, message_description& description);

/// For a record of which there is no dissection.
message_description describe_record(const trace_record& record);

}  // namespace KIVRA::TSHARK::REPLAY
