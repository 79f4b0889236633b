/// The shape of a packet document, one element of tshark's JSON output:
/// {"_source": {"layers": {"PROTOCOL": {...}, ...}}, ...}.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::PARSER {

/// Whether the packet's "_source" and "layers" are objects and the layers have a member of this
/// name, whatever its type. Never throws.
bool has_layer(const nlohmann::json& packet, std::string_view protocol);

/// The dissection of one protocol.
/// @pre has_layer(packet, protocol)
const nlohmann::json& layer(const nlohmann::json& packet, std::string_view protocol);

}  // namespace KIVRA::TSHARK::PARSER
