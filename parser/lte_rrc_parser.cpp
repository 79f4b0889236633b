#include "parser/lte_rrc_parser.h"

#include <array>
#include <string>
#include <string_view>

#include "parser/lte_rrc_mappings.h"
#include "parser/packet_document.h"
#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

struct connection_state {
    std::string_view field_prefix;
    std::string_view name;
};

/// The first field found decides. The underscore behind each name keeps rrcConnectionSetup from
/// matching the fields of rrcConnectionSetupComplete.
constexpr std::array<connection_state, 4> connection_states{{
    {"lte-rrc.rrcConnectionRequest_", "rrcConnectionRequest"},
    {"lte-rrc.rrcConnectionSetup_", "rrcConnectionSetup"},
    {"lte-rrc.rrcConnectionSetupComplete_", "rrcConnectionSetupComplete"},
    {"lte-rrc.rrcConnectionRelease_", "rrcConnectionRelease"},
}};

void map_connection_state(const nlohmann::json& packet, nlohmann::json& result) {
    const nlohmann::json& dissection = layer(packet, lte_rrc_layer);
    for (const auto& state : connection_states) {
        if (find_in_tree_by_prefix(dissection, state.field_prefix) != nullptr) {
            result[lte_rrc_result]["connection_state"] = state.name;
            return;
        }
    }
}

}  // namespace

bool lte_rrc_parser::accepts(const nlohmann::json& packet) const {
    return has_layer(packet, lte_rrc_layer);
}

void lte_rrc_parser::parse(const nlohmann::json& packet, nlohmann::json& result) const {
    map_paging_cycle(*this, packet, result);
    map_paging_repetitions(*this, packet, result);
    map_field(*this, packet, result, "lte-rrc.longDRX_CycleStartOffset", drx_timer_table,
              "cdrx_int");
    map_field(*this, packet, result, "lte-rrc.onDurationTimer", drx_timer_table,
              "cdrx_on_duration");
    map_field(*this, packet, result, "lte-rrc.drx_InactivityTimer", drx_timer_table,
              "cdrx_inactive_timer");
    map_connection_state(packet, result);
}

}  // namespace KIVRA::TSHARK::PARSER
