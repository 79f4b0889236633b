#include "replay/runner/message_reader.h"

#include <exception>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "analysis/analysis_run.h"
#include "analysis/output_processing.h"
#include "context/unique_path.h"
#include "replay/message/describe_message.h"
#include "replay/runner/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

message_reader::message_reader(std::filesystem::path tshark)
    : context_(nullptr, nullptr, std::move(tshark), unique_path("tshark", "json"), {}) {}

void message_reader::read(const trace_record& record, outcome& result) {
    result.message = describe_record(record);
    try {
        if (const auto packet = ANALYSIS::packet_for_tshark(chunk_of(record))) {
            source_.dissect(context_, *packet, [&](std::string output) {
                // As the analysis reads it.
                const auto packets =
                    nlohmann::json::parse(ANALYSIS::number_repeated_names(std::move(output)));
                for (const auto& dissection : packets) {
                    reader_.read(record, dissection, result);
                }
            });
        }
    } catch (const std::exception&) {
        // The plug-in meets the same and says so.
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
