/// The names of the NAS EPS protocol in tshark's output and in the result document.
///
/// Wireshark 4.0 names the fields of the protocol "nas_eps.X"; 4.4 and later versions name them
/// "nas-eps.X". Fields are asked for by their older name here, and the newer name serves where
/// a tree lacks the older one.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::PARSER {

/// tshark's name for the protocol, and the result document's.
inline constexpr std::string_view nas_eps_layer = "nas-eps";
inline constexpr std::string_view nas_eps_result = "nas-eps";

/// The field's value, searched for in the whole tree as `find_in_tree` does, owned by the tree;
/// null when the tree has no such field.
/// @param field the older name, "nas_eps.X"
const nlohmann::json* find_nas_field(const nlohmann::json& tree, std::string_view field);

/// The value of the field that is a direct member of the tree, owned by the tree; null when the
/// tree has no such member or is not an object.
/// @param field the older name, "nas_eps.X"
const nlohmann::json* nas_member(const nlohmann::json& tree, std::string_view field);

}  // namespace KIVRA::TSHARK::PARSER
