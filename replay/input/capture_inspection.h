/// A look at a capture's packets that tells who is to read it.
#pragma once

#include "platform/console/input_stream.h"

namespace KIVRA::TSHARK::REPLAY {

/// Whether the packets are records as they stand: exported PDUs that name dissectors of LTE, or raw
/// IP that carries no signalling. A file is read to its end, so that nothing in it can be
/// overlooked; of a pipe the first packet decides, and raw IP from a pipe may carry anything.
///
/// Stays with captures that break off: who reads the records says so.
/// @param stream where nothing was read before; it must be rewound afterwards
/// @throws std::system_error, and what the stream's callback throws
bool holds_records(PLATFORM::input_stream& stream);

}  // namespace KIVRA::TSHARK::REPLAY
