/// The step that each packet of tshark's output goes through: the first parser that accepts it
/// writes into the result document, and what the power profile needs is carried from there into
/// the context and the parameter file.
#pragma once

#include <nlohmann/json.hpp>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::PROFILE {

/// Takes the values of the power profile out of a result document; those that it lacks stay.
/// @throws nlohmann::json::type_error when one is no text; those before it have been taken
void carry_texts(nlohmann::json& result, profile_texts& texts);

/// Nothing happens to a packet that no parser accepts.
/// @param result the data call's result document
/// @throws nlohmann::json::type_error when a value to be carried is no text, and whatever the
///     parser throws; texts carried until then stay, and no file is written for the packet
void map_packet(sink_context& context, const nlohmann::json& packet, nlohmann::json& result);

}  // namespace KIVRA::TSHARK::PROFILE
