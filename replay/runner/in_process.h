/// Runs records in this process by the plug-in's own rules, with one tshark for all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <vector>

#include "analysis/tshark/running_tshark.h"
#include "context/sink_context.h"
#include "replay/runner/dissection_reader.h"
#include "replay/runner/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

/// Keeps tshark busy: records are sent to it while the results of earlier ones are still to come,
/// as many as a few hundred kilobytes hold.
class in_process final : public record_runner {
  public:
    /// @param tshark the executable
    /// @param profile the parameter file to write
    /// @throws std::filesystem::filesystem_error when the working directory can't be queried
    in_process(std::filesystem::path tshark, std::filesystem::path profile);

    void submit(const trace_record& record, const outcome_handler& handler) override;
    void finish(const outcome_handler& handler) override;
    void complete() override {}

  private:
    struct pending_record {
        trace_record record;
        std::vector<std::uint8_t> payload;
        bool sent = false;
    };

    void add(const trace_record& record);
    void finish_first(const outcome_handler& handler);
    void run(const trace_record& record);

    outcome current_;
    dissection_reader reader_;
    sink_context context_;
    ANALYSIS::running_tshark source_;
    std::deque<pending_record> pending_;
    std::size_t pending_bytes_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
