#include "replay/batch.h"

#include <span>
#include <stdexcept>

#include "analysis/analysis_run.h"
#include "analysis/annotated_chunk.h"
#include "analysis/ipv6_prefix.h"
#include "analysis/json_intake.h"
#include "analysis/pcapng_image.h"
#include "replay/interruption.h"
#include "sink/error_capture.h"
#include "sink/tshark_discovery.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A capture that breaks is told of when its records are run.
std::optional<record> next_of(capture_stream& records) {
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
    for (auto packet = next_of(records); packet && !interrupted(); packet = next_of(records)) {
        add(*packet);
    }
    file_.flush();
}

void batch_capture::add(const record& packet) {
    if (packet.failure || !ANALYSIS::is_for_tshark(packet.format)) {
        return;
    }
    try {
        file_.write(ANALYSIS::pcapng_packet(packet.format, packet.payload, packet.timestamp));
    } catch (const std::length_error&) {
        // The record's own run tells.
    }
}

batch::batch(const batch_capture& capture, const std::filesystem::path& tshark_directory,
             const std::filesystem::path& profile)
    : context_(current(), collect_log, SINK::tshark_executable(tshark_directory), {}, profile),
      output_(context_.tshark_executable, capture.path()),
      packets_([this](std::span<char> place) { return output_.read(place); }) {}

std::optional<std::string> batch::run_chunk(const kivra_trace_chunk& chunk) {
    if (SINK::capture_data_errors(context_, [&] { analyse(chunk); }) == KIVRA_RESULT_SUCCESS) {
        return std::nullopt;
    }
    return context_.last_error_text;
}

void batch::analyse(const kivra_trace_chunk& chunk) {
    const ANALYSIS::chunk_receiver receiver{collect_document, current()};
    if (!ANALYSIS::is_for_tshark(chunk.format)) {
        ANALYSIS::capture_ipv6_prefix(context_, chunk, receiver);
        return;
    }
    // Throws for the records that the capture had to leave out.
    ANALYSIS::pcapng_packet(chunk.format, {chunk.data, chunk.size}, chunk.timestamp);
    if (const auto output = output_of(++frame_)) {
        ANALYSIS::hand_back(chunk, ANALYSIS::take_in(context_, *output), receiver);
    }
}

/// What tshark says of a packet; nothing when its filter dropped the packet.
std::optional<std::string> batch::output_of(std::uint64_t frame) {
    if (!ahead_ || ahead_->number < frame) {
        ahead_ = packets_.next();
    }
    if (!ahead_ || ahead_->number != frame) {
        return std::nullopt;
    }
    return std::move(ahead_->text);
}

}  // namespace KIVRA::TSHARK::REPLAY
