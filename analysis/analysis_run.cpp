#include "analysis/analysis_run.h"

#include <chrono>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "analysis/ipv6_prefix.h"
#include "analysis/record_payload.h"
#include "analysis/tshark/pcapng_image.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

using steady_clock = std::chrono::steady_clock;

bool is_for_tshark(std::string_view format) {
    return format == "nas-eps" || format.find("lte_rrc") != std::string_view::npos;
}

void log_duration(const sink_context& context, steady_clock::time_point start) {
    const auto taken =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    context.log(KIVRA_LOG_INFORMATION,
                "tshark processing took: " + std::to_string(taken.count()) + "ms");
}

}  // namespace

std::optional<std::string> packet_for_tshark(const kivra_trace_chunk& chunk) {
    if (chunk.format == nullptr || !is_for_tshark(chunk.format)) {
        return std::nullopt;
    }
    return pcapng_packet(chunk.format, record_payload(chunk), chunk.timestamp);
}

void analyse_record(sink_context& context, const kivra_trace_chunk& chunk,
                    dissection_source& source, const document_receiver& receive,
                    const packet_observer& observe) {
    const auto packet = packet_for_tshark(chunk);
    if (!packet) {
        capture_ipv6_prefix(context, chunk, receive);
        return;
    }
    const auto start = steady_clock::now();
    source.dissect(context, *packet, [&](std::string output) {
        nlohmann::json document = process_output(context, std::move(output), observe);
        log_duration(context, start);
        if (!document.empty()) {
            receive(std::move(document));
        }
    });
}

}  // namespace KIVRA::TSHARK::ANALYSIS
