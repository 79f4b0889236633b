/// The way of a result document to the host.
#pragma once

#include <functional>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::ANALYSIS {

/// Gets the document of a record, which is never empty.
using document_receiver = std::function<void(nlohmann::json document)>;

/// Hands the host its own record with the document as text: indented by 4 blanks, non-ASCII
/// characters as they are.
/// @param callback the host's; nothing happens when it is null
/// @throws nlohmann::json::type_error 316 for a document that holds a text that is no UTF-8
void deliver_result(const kivra_trace_chunk& chunk, const nlohmann::json& document,
                    kivra_chunk_callback callback, void* user_data);

}  // namespace KIVRA::TSHARK::ANALYSIS
