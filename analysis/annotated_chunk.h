/// The way of a document back to the host.
#pragma once

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::ANALYSIS {

/// Where a data call's documents go: the host's callback (may be null) and its user data.
struct chunk_receiver {
    kivra_chunk_callback callback;
    void* user_data;
};

/// Hands the host its own record with the document as text: indented by 4 blanks, non-ASCII
/// characters as they are. Does nothing without a callback, or for an empty document.
/// @throws nlohmann::json::type_error 316 for a document that holds a text that is no UTF-8
void hand_back(const kivra_trace_chunk& chunk, const nlohmann::json& document,
               const chunk_receiver& receiver);

}  // namespace KIVRA::TSHARK::ANALYSIS
