#include "replay/runner/in_process.h"

#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include "analysis/analysis_run.h"
#include "context/unique_path.h"
#include "replay/message/describe_message.h"
#include "sink/error_capture.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

// Enough to keep tshark busy while results are reported.
constexpr std::size_t most_pending_records = 256;
constexpr std::size_t most_pending_bytes = 262'144;

}  // namespace

in_process::in_process(std::filesystem::path tshark, std::filesystem::path profile)
    : context_(&current_, collect_log, std::move(tshark), unique_path("tshark", "json"),
               std::move(profile)) {}

void in_process::submit(const trace_record& record, const outcome_handler& handler) {
    add(record);
    while (!pending_.empty() && (!pending_.front().sent || pending_.size() > most_pending_records ||
                                 pending_bytes_ > most_pending_bytes)) {
        finish_first(handler);
    }
}

void in_process::finish(const outcome_handler& handler) {
    while (!pending_.empty()) {
        finish_first(handler);
    }
}

void in_process::add(const trace_record& record) {
    auto& pending = pending_.emplace_back();
    pending.record = record;
    pending.payload.assign(record.payload.begin(), record.payload.end());
    pending.record.payload = pending.payload;
    pending_bytes_ += pending.payload.size();
    if (record.failure) {
        return;
    }
    try {
        if (auto packet = ANALYSIS::packet_for_tshark(chunk_of(pending.record))) {
            source_.send_ahead(context_, std::move(*packet));
            pending.sent = true;
        }
    } catch (const std::length_error&) {
        // It fails when its turn comes.
    }
}

void in_process::finish_first(const outcome_handler& handler) {
    const pending_record first = std::move(pending_.front());
    pending_.pop_front();
    pending_bytes_ -= first.payload.size();
    current_ = {};
    current_.message = describe_record(first.record);
    if (first.record.failure) {
        current_.failure = first.record.failure;
    } else {
        run(first.record);
    }
    handler(first.record, current_);
}

void in_process::run(const trace_record& record) {
    const auto result = SINK::capture_data_errors(context_, [&] {
        ANALYSIS::analyse_record(
            context_, chunk_of(record), source_,
            [this](nlohmann::json document) { current_.document = std::move(document); },
            [&](const nlohmann::json& packet) { reader_.read(record, packet, current_); });
    });
    if (result != KIVRA_RESULT_SUCCESS) {
        current_.failure = {failure_kind::analysis, context_.last_error_text};
    }
    // How long tshark took says nothing about a record when it works on several at a time.
    std::erase_if(current_.log, is_timing);
}

}  // namespace KIVRA::TSHARK::REPLAY
