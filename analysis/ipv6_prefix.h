/// The IPv6 prefix that a router advertisement on the IP path announces.
#pragma once

#include <kivra/tshark_sink.h>

#include "analysis/result_delivery.h"
#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// Takes the prefix out of a record of format "ip" that holds a router advertisement whose first
/// option is the prefix information (RFC 4861, 4.2 and 4.6.2), adds it to the carried state's PDN
/// details as "ICMPv6_prefix", and hands a copy of the carried state to the receiver. While there
/// is no carried state the prefix goes into a document of its own and is not kept. Any other record
/// is ignored.
/// @throws std::invalid_argument for a record without data, nlohmann::json::exception for a carried
///     state that can't hold the prefix
void capture_ipv6_prefix(sink_context& context, const kivra_trace_chunk& chunk,
                         const document_receiver& receive);

}  // namespace KIVRA::TSHARK::ANALYSIS
