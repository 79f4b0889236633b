/// The step that each packet of tshark's output goes through: the first parser that accepts it
/// writes into the result document, and what the power profile needs is carried from there into
/// the context and the parameter file.
#pragma once

#include <nlohmann/json.hpp>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::PROFILE {

/// Copies the `profile_values` that a result document holds into the texts; the others stay.
/// @throws nlohmann::json::type_error 302 when one is not a text or a timer has no bitmask; 305
///     when a timer is not an object; the values before it have been copied
void carry_texts(const nlohmann::json& result, profile_texts& texts);

/// Nothing happens to a packet that no parser accepts.
/// @param result the data call's result document
/// @throws nlohmann::json::type_error when a value to be carried is not a text, and whatever the
///     parser throws; texts carried until then stay, and no file is written for the packet
void map_packet(sink_context& context, const nlohmann::json& packet, nlohmann::json& result);

}  // namespace KIVRA::TSHARK::PROFILE
