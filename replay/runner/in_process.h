/// Runs records in this process, by the plug-in's own rules and with the same outcome, from a
/// source of dissections of the caller's choice.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "analysis/dissection_source.h"
#include "context/sink_context.h"
#include "replay/runner/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

class in_process final : public record_runner {
  public:
    /// @param tshark the executable
    /// @param profile the parameter file to write
    in_process(std::filesystem::path tshark, std::filesystem::path profile,
               std::unique_ptr<ANALYSIS::dissection_source> source);

    void complete() override {}

  private:
    std::optional<record_failure> run_chunk(const kivra_trace_chunk& chunk) override;

    sink_context context_;
    std::unique_ptr<ANALYSIS::dissection_source> source_;
};

}  // namespace KIVRA::TSHARK::REPLAY
