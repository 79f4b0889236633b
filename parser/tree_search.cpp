#include "parser/tree_search.h"

#include <string>

namespace KIVRA::TSHARK::PARSER {

namespace {

template <typename Matches>
const nlohmann::json* first_match(const nlohmann::json& tree, const Matches& matches) {
    if (!tree.is_structured()) {
        return nullptr;
    }
    for (const auto& [name, value] : tree.items()) {
        if (matches(name)) {
            return &value;
        }
        if (value.is_object()) {
            if (const nlohmann::json* found = first_match(value, matches)) {
                return found;
            }
        }
    }
    return nullptr;
}

}  // namespace

const nlohmann::json* find_in_tree(const nlohmann::json& tree, std::string_view name) {
    return first_match(tree, [name](const std::string& member) { return member == name; });
}

const nlohmann::json* find_in_tree_by_prefix(const nlohmann::json& tree, std::string_view prefix) {
    return first_match(tree,
                       [prefix](const std::string& member) { return member.starts_with(prefix); });
}

}  // namespace KIVRA::TSHARK::PARSER
