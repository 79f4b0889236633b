/// The report for people: a table with a line a record, then a summary.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "replay/report/profile_file.h"
#include "replay/report/record_details.h"
#include "replay/report/report.h"
#include "replay/report/summary.h"

namespace KIVRA::TSHARK::REPLAY {

class table_report final : public report {
  public:
    /// @param out outlives the object
    /// @param profile the run's, outlives the object
    table_report(std::ostream& out, bool coloured, const profile_file& profile)
        : out_(out), coloured_(coloured), profile_(profile) {}

    void begin(const std::string& heading) override;
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;
    void end() override;

  private:
    void print_row(std::uint64_t number, const trace_record& record, const outcome& result,
                   const record_details& details);

    std::ostream& out_;
    bool coloured_;
    const profile_file& profile_;
    summary summary_;
};

}  // namespace KIVRA::TSHARK::REPLAY
