#include <utility>

#include "replay/input/packet_verdict.h"
#include "replay/input/printed_capture.h"
#include "replay/input/record_capture.h"

namespace KIVRA::TSHARK::REPLAY {

std::unique_ptr<capture> open_records(capture_source& source) {
    const bool are_records = packets_are_records(source).value_or(true);
    source.stream->rewind();
    return are_records ? std::make_unique<printed_capture>(std::move(source)) : nullptr;
}

}  // namespace KIVRA::TSHARK::REPLAY
