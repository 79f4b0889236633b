/// Searches for a field anywhere in a dissection: tshark nests every field in labelled subtrees
/// whose depth varies from message to message.
///
/// Both searches take the first match of a depth-first walk that looks at a member's own name
/// before it enters the member's value. Object members are visited in ascending byte-wise order of
/// their names (which is why documents use the library's default, sorted object type). The elements
/// of an array given as the tree are visited as members named by their decimal index; an array met
/// as a member's value is not entered. A tree that is neither object nor array holds nothing.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::PARSER {

/// @return the value of the first member with this name, owned by the tree; null when there is none
const nlohmann::json* find_in_tree(const nlohmann::json& tree, std::string_view name);

/// @return the value of the first member whose name begins with the prefix, owned by the tree; null
///     when there is none
const nlohmann::json* find_in_tree_by_prefix(const nlohmann::json& tree, std::string_view prefix);

}  // namespace KIVRA::TSHARK::PARSER
