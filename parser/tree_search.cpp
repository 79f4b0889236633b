#include "parser/tree_search.h"

#include <cstddef>
#include <string>

namespace KIVRA::TSHARK::PARSER {

namespace {

using nlohmann::json;

template <typename Matches>
const json* first_match(const json& tree, const Matches& matches);

template <typename Matches>
const json* match_of(const std::string& name, const json& value, const Matches& matches) {
    if (matches(name)) {
        return &value;
    }
    return value.is_object() ? first_match(value, matches) : nullptr;
}

template <typename Matches>
const json* first_match(const json& tree, const Matches& matches) {
    if (tree.is_object()) {
        for (const auto& [name, value] : tree.get_ref<const json::object_t&>()) {
            if (const json* found = match_of(name, value, matches)) {
                return found;
            }
        }
    } else if (tree.is_array()) {
        for (std::size_t index = 0; index < tree.size(); ++index) {
            if (const json* found = match_of(std::to_string(index), tree[index], matches)) {
                return found;
            }
        }
    }
    return nullptr;
}

}  // namespace

const json* find_in_tree(const json& tree, std::string_view name) {
    return first_match(tree, [name](const std::string& member) { return member == name; });
}

const json* find_in_tree_by_prefix(const json& tree, std::string_view prefix) {
    return first_match(tree,
                       [prefix](const std::string& member) { return member.starts_with(prefix); });
}

}  // namespace KIVRA::TSHARK::PARSER
