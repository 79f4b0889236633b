#include "parser/lte_rrc_mappings.h"

#include <algorithm>
#include <string>

#include "parser/packet_document.h"
#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

/// @param diagnostic what is logged behind a value that the table lacks
void store_mapped(const parser_base& parser, const nlohmann::json& found, mapping_table table,
                  std::string_view diagnostic, nlohmann::json& result, std::string_view member) {
    const auto index = found.get<std::string>();
    const auto entry = std::ranges::find(table, index, &mapping_entry::index);
    if (entry == table.end()) {
        parser.log(index + std::string(diagnostic));
        return;
    }
    result[lte_rrc_result][member] = entry->value;
}

}  // namespace

void map_field(const parser_base& parser, const nlohmann::json& packet, nlohmann::json& result,
               std::string_view field, mapping_table table, std::string_view member) {
    if (const auto* found = find_in_tree(layer(packet, lte_rrc_layer), field)) {
        store_mapped(parser, *found, table, " mapping not found", result, member);
    }
}

void map_paging_cycle(const parser_base& parser, const nlohmann::json& packet,
                      nlohmann::json& result) {
    const auto* found =
        find_in_tree_by_prefix(layer(packet, lte_rrc_layer), "lte-rrc.defaultPagingCycle");
    if (found != nullptr) {
        store_mapped(parser, *found, paging_cycle_table, " defaultPagingCycle mapping not found",
                     result, "idrx_int");
    }
}

void map_paging_repetitions(const parser_base& parser, const nlohmann::json& packet,
                            nlohmann::json& result) {
    const nlohmann::json& dissection = layer(packet, lte_rrc_layer);
    const auto* found = find_in_tree_by_prefix(dissection, "lte-rrc.mpdcch_NumRepetition_Paging");
    if (found == nullptr) {
        found = find_in_tree_by_prefix(dissection, "lte-rrc.npdcch_NumRepetitionPaging");
    }
    if (found != nullptr) {
        store_mapped(parser, *found, paging_repetition_table,
                     " mpdcch_NumRepetition_Paging_r13 mapping not found", result, "idrx_reps");
    }
}

}  // namespace KIVRA::TSHARK::PARSER
