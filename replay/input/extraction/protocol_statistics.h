/// tshark's statistics of protocols (-z io,phs).
#pragma once

#include <string_view>

#include "replay/record/capture_content.h"

namespace KIVRA::TSHARK::REPLAY {

/// Reads rows such as "    udp        frames:83 bytes:9960", indented by their layers. A protocol
/// that stands in several places counts with all its packets, but not once more inside itself.
/// @param text what tshark prints behind the packets; without rows when it counted nothing
capture_content read_protocol_statistics(std::string_view text);

}  // namespace KIVRA::TSHARK::REPLAY
