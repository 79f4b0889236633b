#include "replay/runner/batch_source.h"

#include <stdexcept>
#include <utility>

#include "analysis/analysis_run.h"
#include "analysis/pcapng_image.h"
#include "platform/program.h"
#include "replay/runner/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A capture that breaks is reported when its records are run.
std::optional<trace_record> next_of(capture_stream& records) {
    while (true) {
        try {
            return records.next();
        } catch (const std::runtime_error&) {
            continue;
        }
    }
}

}  // namespace

batch_capture::batch_capture(capture_stream records) {
    file_.write(ANALYSIS::pcapng_head());
    for (auto record = next_of(records); record && !PLATFORM::interrupted();
         record = next_of(records)) {
        add(*record);
    }
    file_.flush();
}

void batch_capture::add(const trace_record& record) {
    if (record.failure) {
        return;
    }
    try {
        if (const auto packet = ANALYSIS::packet_for_tshark(chunk_of(record))) {
            file_.write(*packet);
        }
    } catch (const std::length_error&) {
        // Reported when the record is run.
    }
}

void batch_source::dissect(const sink_context& /*context*/, const std::string& /*packet*/,
                           const ANALYSIS::output_handler& handler) {
    ++frame_;
    if (!lookahead_ || lookahead_->number < frame_) {
        lookahead_ = packets_.next();
    }
    // tshark's filter drops packets without a word.
    const bool dropped = !lookahead_ || lookahead_->number != frame_;
    handler(dropped ? "[]" : std::move(lookahead_->text));
}

}  // namespace KIVRA::TSHARK::REPLAY
