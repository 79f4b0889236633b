#include "replay/input/extraction/printed_frame.h"

#include <utility>

#include "replay/input/extraction/packet_time.h"
#include "replay/input/extraction/printed_json.h"

namespace KIVRA::TSHARK::REPLAY {

printed_frame read_frame(const std::string& text) {
    const auto packets = parse_printed(text);
    const auto& layers = layers_of(packets);
    const auto& frame = layers.at("frame");
    printed_frame found{.timestamp = packet_time(text_of(frame, "frame.time_epoch")),
                        .encapsulation = number_of<int>(frame, "frame.encap_type"),
                        .original_size = number_of<std::size_t>(frame, "frame.len")};
    if (const auto raw = layers.find("frame_raw"); raw != layers.end()) {
        for (auto& bytes : raw_bytes(*raw)) {
            found.bytes = std::move(bytes);
        }
    }
    return found;
}

}  // namespace KIVRA::TSHARK::REPLAY
