#include "replay/runner/in_process.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "analysis/analysis_run.h"
#include "sink/error_capture.h"

namespace KIVRA::TSHARK::REPLAY {

in_process::in_process(std::filesystem::path tshark, std::filesystem::path profile,
                       std::unique_ptr<ANALYSIS::dissection_source> source)
    : context_(current(), collect_log, std::move(tshark), {}, std::move(profile)),
      source_(std::move(source)) {}

std::optional<record_failure> in_process::run_chunk(const kivra_trace_chunk& chunk) {
    const auto result = SINK::capture_data_errors(context_, [&] {
        ANALYSIS::analyse_record(context_, chunk, *source_, [this](nlohmann::json document) {
            current()->document = std::move(document);
        });
    });
    // How long tshark took says nothing about a record when it works on several at a time.
    std::erase_if(current()->log, is_timing);
    if (result == KIVRA_RESULT_SUCCESS) {
        return std::nullopt;
    }
    return record_failure{failure_kind::analysis, context_.last_error_text};
}

}  // namespace KIVRA::TSHARK::REPLAY
