#include <utility>

#include "replay/input/packet_verdict.h"
#include "replay/input/printed_capture.h"
#include "replay/input/record_capture.h"

namespace KIVRA::TSHARK::REPLAY {

bool holds_records(const capture_source& source) {
    return packets_are_records(source);
}

std::unique_ptr<capture> open_records(capture_source source) {
    return std::make_unique<printed_capture>(std::move(source));
}

}  // namespace KIVRA::TSHARK::REPLAY
