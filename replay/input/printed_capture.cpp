#include "replay/input/printed_capture.h"

#include <stdexcept>
#include <string>

#include "replay/input/link_types.h"
#include "replay/input/packet_verdict.h"

namespace KIVRA::TSHARK::REPLAY {

std::optional<trace_record> printed_capture::next() {
    if (!tshark_) {
        tshark_.emplace(source_, extraction_depth::frames);
    }
    std::string text;
    if (tshark_->read(text) == extraction_state::ended) {
        return std::nullopt;
    }
    ++packets_;
    try {
        current_ = read_frame(text);
    } catch (const std::runtime_error& error) {
        throw capture_error(source_.name, error.what());
    }
    const auto* const type = link_type_of_encapsulation(current_.encapsulation);
    if (type == nullptr) {
        throw capture_error(source_.name, "packet " + std::to_string(packets_) +
                                              " is of another link type than those before");
    }
    return record_of(*type, current_.timestamp, current_.bytes, current_.original_size);
}

std::optional<bool> packets_are_records(const capture_source& source) {
    extracting_tshark tshark(source, extraction_depth::frames);
    packet_verdict verdict;
    bool has_packets = false;
    const bool is_file = !source.file.empty();
    try {
        std::string text;
        while (tshark.read(text) != extraction_state::ended) {
            has_packets = true;
            const auto frame = read_frame(text);
            const auto* const type = link_type_of_encapsulation(frame.encapsulation);
            if (type == nullptr || (!is_exported_pdu(*type) && !is_file)) {
                return false;
            }
            verdict.look_at(*type, frame.bytes);
            if (!is_file) {
                break;
            }
        }
    } catch (const std::runtime_error&) {
        // Who reads the records says so.
    }
    return has_packets ? std::optional(verdict.are_records()) : std::nullopt;
}

}  // namespace KIVRA::TSHARK::REPLAY
