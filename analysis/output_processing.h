/// tshark's JSON output on its way to the parsers: repaired, parsed, and handed on packet by
/// packet.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include <nlohmann/json.hpp>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// How many brackets of an output may be open at once, counted from its outermost one. tshark
/// itself stops at 500 levels (its limit on the depth of a protocol tree); what is deeper was not
/// written by it, and walking or copying it could run over the stack.
constexpr std::size_t deepest_nesting = 1'000;

/// Gives each "gsm_a.gm.sm.pco_pid_tree" of the text a name of its own, since tshark repeats the
/// name inside one object and a JSON object keeps only one member of a name. A number is appended:
/// 1 for the first in the text, counting on through the whole text in 8 bits, so that the 256th
/// gets 0 and the 257th 1 again. Texts that are no member names are numbered as well.
std::string number_repeated_names(std::string text);

/// Gets each packet of tshark's output before it is analysed, whatever comes of that.
using packet_observer = std::function<void(const nlohmann::json& packet)>;

/// Hands every packet of the output to the per-packet step, in order; whatever has no "_source"
/// with "layers" is skipped.
/// @param observe may be none
/// @return the result document: null when no packet gave anything
/// @throws nlohmann::json::parse_error for a text that is no JSON, std::runtime_error for one that
///     is nested more deeply than `deepest_nesting`, and what the step throws; no packet behind
///     the failing one is handed on
nlohmann::json process_output(sink_context& context, std::string output,
                              const packet_observer& observe = {});

}  // namespace KIVRA::TSHARK::ANALYSIS
