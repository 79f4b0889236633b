/// Captures whose packets are records as they stand. With libpcap they are read directly; where
/// there is no libpcap, tshark prints them.
#pragma once

#include <memory>

#include "replay/input/capture.h"
#include "replay/input/extraction/capture_source.h"

namespace KIVRA::TSHARK::REPLAY {

/// Opens a capture whose packets are records as they stand, see `packet_verdict`. A file is read to
/// its end, so that nothing in it can be overlooked; of a pipe the first packet decides, and raw IP
/// from a pipe may carry anything, and so may what libpcap can't open.
///
/// Stays silent about captures that break off: who reads the records says so.
/// @param source where nothing was read before; it is taken, or rewound
/// @return null for a capture of another kind
/// @throws std::system_error, capture_error, and what the stream's callback throws
std::unique_ptr<capture> open_records(capture_source& source);

}  // namespace KIVRA::TSHARK::REPLAY
