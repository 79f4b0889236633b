#include "parser/nas_field_names.h"

#include <string>

#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

constexpr std::string_view older_prefix = "nas_eps.";
constexpr std::string_view newer_prefix = "nas-eps.";

/// What the lookup finds under the field's older name, or else under its newer one.
template <typename Lookup>
const nlohmann::json* under_either_name(std::string_view field, const Lookup& lookup) {
    const nlohmann::json* found = lookup(field);
    if (found == nullptr && field.starts_with(older_prefix)) {
        found = lookup(std::string(newer_prefix).append(field.substr(older_prefix.size())));
    }
    return found;
}

}  // namespace

const nlohmann::json* find_nas_field(const nlohmann::json& tree, std::string_view field) {
    return under_either_name(field,
                             [&tree](std::string_view name) { return find_in_tree(tree, name); });
}

const nlohmann::json* nas_member(const nlohmann::json& tree, std::string_view field) {
    return under_either_name(field, [&tree](std::string_view name) -> const nlohmann::json* {
        const auto member = tree.find(name);
        return member != tree.end() ? &*member : nullptr;
    });
}

}  // namespace KIVRA::TSHARK::PARSER
