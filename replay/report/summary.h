/// The summary of a run, for people.
#pragma once

#include <iosfwd>
#include <vector>

#include "replay/record/capture_content.h"
#include "replay/report/run_totals.h"
#include "replay/trace/profile_file.h"

namespace KIVRA::TSHARK::REPLAY {

class summary {
  public:
    /// @param details of the record
    void add(std::uint64_t number, const trace_record& record, const outcome& result,
             const std::vector<detail_value>& details) {
        totals_.add(number, record, result, details);
    }

    /// @param captures what was read
    /// @throws std::runtime_error when the profile was written but can't be read
    void print(std::ostream& out, const profile_file& profile,
               const capture_content& captures) const;

  private:
    void print_formats(std::ostream& out) const;
    static void print_incomplete(std::ostream& out, const capture_content& captures);
    void print_messages(std::ostream& out) const;
    void print_unreadable(std::ostream& out, const capture_content& captures) const;
    void print_values(std::ostream& out) const;
    void print_diagnostics(std::ostream& out) const;
    void print_profile(std::ostream& out, const profile_file& profile) const;
    void print_members(std::ostream& out, const profile_content& content) const;

    run_totals totals_;
};

/// Why there is no profile: what is missing, and why it may be.
std::string reason_for_no_profile(const run_totals& totals);

}  // namespace KIVRA::TSHARK::REPLAY
