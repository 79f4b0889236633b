/// How tshark is asked for the messages in a capture.
#pragma once

#include <string>
#include <vector>

#include "replay/input/extraction/extraction_options.h"

namespace KIVRA::TSHARK::REPLAY {

/// How much of a packet tshark prints.
enum class extraction_depth {
    /// The bytes of every packet.
    frames,
    /// The layers, without what is inside them, but for the names of RRC messages. That takes a
    /// tenth of the time, and is enough where messages are layers of their own, as with GSMTAP.
    layers,
    /// All, for messages that stand inside a layer, as with S1AP.
    everything,
};

/// The arguments with which tshark prints, unless it is to print every packet, those with NAS or
/// RRC messages or router advertisements, and, to tell their link types, packets of link types
/// for private use that nothing was said about; behind them it counts the protocols of all packets.
/// @param capture a file, or "-" for tshark's standard input
std::vector<std::string> extraction_arguments(const std::string& capture, extraction_depth depth,
                                              const extraction_options& options);

}  // namespace KIVRA::TSHARK::REPLAY
