#include "analysis/analysis_run.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "analysis/ipv6_prefix.h"
#include "analysis/json_intake.h"
#include "analysis/pcapng_image.h"
#include "analysis/record_payload.h"
#include "analysis/tshark_command.h"
#include "context/file_status.h"
#include "context/unique_path.h"
#include "platform/platform.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

using steady_clock = std::chrono::steady_clock;

/// Deletes the run's files on every way out. A file that can't be deleted ends the process, since a
/// destructor can't throw.
class working_files {
  public:
    working_files(const std::filesystem::path& capture, const std::filesystem::path& output)
        : capture_(capture), output_(output) {}
    ~working_files() {
        remove_entry(capture_);
        remove_entry(output_);
    }
    working_files(const working_files&) = delete;
    working_files& operator=(const working_files&) = delete;

  private:
    const std::filesystem::path& capture_;
    const std::filesystem::path& output_;
};

void log_duration(const sink_context& context, steady_clock::time_point start) {
    const auto taken =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    context.log(KIVRA_LOG_INFORMATION,
                "tshark processing took: " + std::to_string(taken.count()) + "ms");
}

void run_tshark(sink_context& context, const kivra_trace_chunk& chunk,
                const chunk_receiver& receiver) {
    const std::string image = pcapng_image(chunk.format, record_payload(chunk), chunk.timestamp);

    const auto start = steady_clock::now();
    const std::filesystem::path capture = unique_path("tshark_temp", "pcapng");
    // A capture that can't be written shows up as tshark's missing output.
    PLATFORM::write_file(capture, image);
    const working_files clean_up(capture, context.tshark_output);

    const auto failure = PLATFORM::run_program(context.tshark_executable, tshark_arguments(capture),
                                               context.tshark_output);
    if (failure) {
        context.log(KIVRA_LOG_ERROR,
                    "invoking tshark failed with error: " + std::to_string(*failure));
        return;
    }

    const nlohmann::json result = take_in(context, read_output(context.tshark_output));
    log_duration(context, start);
    hand_back(chunk, result, receiver);
}

}  // namespace

bool is_for_tshark(std::string_view format) {
    return format == "nas-eps" || format.find("lte_rrc") != std::string_view::npos;
}

void analyse_record(sink_context& context, const kivra_trace_chunk& chunk,
                    const chunk_receiver& receiver) {
    if (chunk.format == nullptr) {
        return;
    }
    if (is_for_tshark(chunk.format)) {
        run_tshark(context, chunk, receiver);
    } else {
        capture_ipv6_prefix(context, chunk, receiver);
    }
}

}  // namespace KIVRA::TSHARK::ANALYSIS
