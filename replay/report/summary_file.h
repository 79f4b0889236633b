/// The summary of a run as one JSON object, for programs.
#pragma once

#include <filesystem>

#include "replay/report/report.h"
#include "replay/report/run_totals.h"
#include "replay/trace/profile_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// The object as docs/summary.schema.json describes it.
nlohmann::ordered_json json_of(const run_totals& totals, const profile_file& profile,
                               const capture_content& captures);

class summary_file final : public report {
  public:
    /// @param file created or overwritten at the end
    /// @param profile the run's, outlives the object
    summary_file(std::filesystem::path file, const profile_file& profile)
        : file_(std::move(file)), profile_(profile) {}

    void begin(const std::string& /*heading*/) override {}
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;

    /// @throws std::runtime_error when the file can't be written, or the profile can't be read
    void end(const capture_content& captures) override;

  private:
    std::filesystem::path file_;
    const profile_file& profile_;
    run_totals totals_;
};

}  // namespace KIVRA::TSHARK::REPLAY
