/// The tables that turn the index of an enumerated LTE RRC value, as tshark prints it, into the
/// number that the power profiler expects, and the lookups that carry a field of a packet through
/// its table into the result document. Keys and values are texts; a key matches as a whole.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "parser/parser_base.h"

namespace KIVRA::TSHARK::PARSER {

/// tshark's name for the protocol, and the result document's.
inline constexpr std::string_view lte_rrc_layer = "lte_rrc";
inline constexpr std::string_view lte_rrc_result = "lte-rrc";

struct mapping_entry {
    /// The index of the enumerated value, decimal.
    std::string_view index;
    std::string_view value;
};

using mapping_table = std::span<const mapping_entry>;

/// Default paging cycle, in seconds (3GPP TS 36.331, 6.3.2: PCCH-Config defaultPagingCycle,
/// rf32 to rf256).
inline constexpr std::array<mapping_entry, 4> paging_cycle_table{{
    {"0", "0.32"},
    {"1", "0.64"},
    {"2", "1.28"},
    {"3", "2.56"},
}};

/// Repetitions of the paging control channel (3GPP TS 36.331, 6.3.2: PCCH-Config
/// mpdcch-NumRepetition-Paging-r13, r1 to r256).
inline constexpr std::array<mapping_entry, 9> paging_repetition_table{{
    {"0", "1"},
    {"1", "2"},
    {"2", "4"},
    {"3", "8"},
    {"4", "16"},
    {"5", "32"},
    {"6", "64"},
    {"7", "128"},
    {"8", "256"},
}};

/// DRX timers, in PDCCH subframes (3GPP TS 36.331, 6.3.2: MAC-MainConfig drx-InactivityTimer,
/// psf1 to psf2560). All three connected-mode DRX fields go through this table.
inline constexpr std::array<mapping_entry, 22> drx_timer_table{{
    {"0", "1"},    {"1", "2"},     {"2", "3"},     {"3", "4"},     {"4", "5"},    {"5", "6"},
    {"6", "8"},    {"7", "10"},    {"8", "20"},    {"9", "30"},    {"10", "40"},  {"11", "50"},
    {"12", "60"},  {"13", "80"},   {"14", "100"},  {"15", "200"},  {"16", "300"}, {"17", "500"},
    {"18", "750"}, {"19", "1280"}, {"20", "1920"}, {"21", "2560"},
}};

/// The long DRX cycle's own values, in seconds (3GPP TS 36.331, 6.3.2: MAC-MainConfig
/// longDRX-CycleStartOffset, sf10 to sf2560). No lookup uses them.
inline constexpr std::array<mapping_entry, 16> long_drx_cycle_table{{
    {"0", "0.01"},
    {"1", "0.02"},
    {"2", "0.032"},
    {"3", "0.040"},
    {"4", "0.064"},
    {"5", "0.080"},
    {"6", "0.128"},
    {"7", "0.160"},
    {"8", "0.256"},
    {"9", "0.320"},
    {"10", "0.512"},
    {"11", "0.640"},
    {"12", "1.024"},
    {"13", "1.280"},
    {"14", "2.048"},
    {"15", "2.560"},
}};

/// The on-duration timer's own values, in PDCCH subframes (3GPP TS 36.331, 6.3.2: MAC-MainConfig
/// onDurationTimer, psf1 to psf200). No lookup uses them.
inline constexpr std::array<mapping_entry, 16> on_duration_table{{
    {"0", "1"},
    {"1", "2"},
    {"2", "3"},
    {"3", "4"},
    {"4", "5"},
    {"5", "6"},
    {"6", "8"},
    {"7", "10"},
    {"8", "20"},
    {"9", "30"},
    {"10", "40"},
    {"11", "50"},
    {"12", "60"},
    {"13", "80"},
    {"14", "100"},
    {"15", "200"},
}};

/// Finds the field in the packet's LTE RRC layer and stores its value, as the table translates it,
/// under the given member of the result's "lte-rrc". A packet without the field changes nothing; a
/// value without an entry is logged ("VALUE mapping not found") and changes nothing.
/// @throws nlohmann::json::type_error 302 when the field is not a text, 305 when the result's
///     "lte-rrc" is neither object nor null
void map_field(const parser_base& parser, const nlohmann::json& packet, nlohmann::json& result,
               std::string_view field, mapping_table table, std::string_view member);

/// The same for `idrx_int`, whose field is found by the beginning of its name.
void map_paging_cycle(const parser_base& parser, const nlohmann::json& packet,
                      nlohmann::json& result);

/// The same for `idrx_reps`: the LTE-M field, or else the NB-IoT one.
void map_paging_repetitions(const parser_base& parser, const nlohmann::json& packet,
                            nlohmann::json& result);

}  // namespace KIVRA::TSHARK::PARSER
