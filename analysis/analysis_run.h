/// What one data call does with its record: tshark for NAS and RRC messages, the prefix capture for
/// IP packets, nothing for the rest. The one place that decides this, whoever runs the records.
#pragma once

#include <optional>
#include <string>

#include <kivra/tshark_sink.h>

#include "analysis/output_processing.h"
#include "analysis/result_delivery.h"
#include "analysis/tshark/dissection_source.h"
#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// The record as a block of a capture file when it is one for tshark: a NAS message of EPS, or an
/// LTE RRC message of any channel. Nothing for every other record.
/// @throws std::length_error, std::invalid_argument for a record that can't stand in a capture
std::optional<std::string> packet_for_tshark(const kivra_trace_chunk& chunk);

/// Blocks until the record is finished.
/// @param source where the dissection comes from
/// @param receive gets the result document, unless that is empty
/// @param observe gets the packets of the dissection; may be none
/// @throws as `packet_for_tshark`, before anything is done; what the source throws;
///     nlohmann::json::exception for an output that can't be made sense of; what a callback throws
void analyse_record(sink_context& context, const kivra_trace_chunk& chunk,
                    dissection_source& source, const document_receiver& receive,
                    const packet_observer& observe = {});

}  // namespace KIVRA::TSHARK::ANALYSIS
