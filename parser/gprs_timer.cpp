#include "parser/gprs_timer.h"

#include <algorithm>
#include <bitset>
#include <string>

#include "parser/nas_field_names.h"
#include "parser/number_conversion.h"
#include "parser/packet_document.h"
#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

const nlohmann::json* find_timer_tree(const nlohmann::json& packet, const gprs_timer& timer) {
    const auto* element = find_in_tree(layer(packet, nas_eps_layer), timer.element);
    return element != nullptr ? find_in_tree(*element, timer.tree_field) : nullptr;
}

/// The number's low bits, most significant first.
template <std::size_t Count>
std::string low_bits(std::uint32_t number) {
    return std::bitset<Count>(number).to_string();
}

}  // namespace

void decode_gprs_timer(const nlohmann::json& packet, nlohmann::json& result,
                       const gprs_timer& timer) {
    const auto* tree = find_timer_tree(packet, timer);
    if (tree == nullptr || !tree->contains(timer.unit_field) ||
        !tree->contains(timer.value_field)) {
        return;
    }
    const std::uint32_t unit_number = to_unsigned(tree->at(timer.unit_field).get<std::string>());
    const std::uint32_t value = to_unsigned(tree->at(timer.value_field).get<std::string>());

    const std::string unit_bits = low_bits<3>(unit_number);
    const auto unit = std::ranges::find(timer.units, unit_bits, &gprs_timer_unit::bits);
    if (unit != timer.units.end()) {
        result[nas_eps_result][timer.member]["value"] = unit->multiplier * value;
        result[nas_eps_result][timer.member]["unit"] = unit->word;
    }
    result[nas_eps_result][timer.member]["bitmask"] = unit_bits + low_bits<5>(value);
}

}  // namespace KIVRA::TSHARK::PARSER
