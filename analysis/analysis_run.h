/// What one data call does with its record: tshark for NAS and RRC messages, the prefix capture for
/// IP packets, nothing for the rest.
#pragma once

#include <string_view>

#include <kivra/tshark_sink.h>

#include "analysis/annotated_chunk.h"
#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// Whether records of this format go through tshark: NAS messages of EPS, and LTE RRC messages of
/// every channel.
bool is_for_tshark(std::string_view format);

/// Blocks until tshark has ended. The capture file and tshark's output are gone when it returns or
/// throws; a file that can't be deleted ends the process. A tshark that can't be started is logged
/// and is no failure.
/// @throws std::filesystem::filesystem_error, std::length_error, std::invalid_argument before any
///     file is touched; std::runtime_error "cannot open file" without an output;
///     nlohmann::json::exception for an output that can't be made sense of; what a callback throws
void analyse_record(sink_context& context, const kivra_trace_chunk& chunk,
                    const chunk_receiver& receiver);

}  // namespace KIVRA::TSHARK::ANALYSIS
