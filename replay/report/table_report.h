/// The report for people: a table, then a summary. The table has a line for each record that tells
/// something new, and a line for each run of others.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "replay/report/novelty.h"
#include "replay/report/record_details.h"
#include "replay/report/record_run.h"
#include "replay/report/report.h"
#include "replay/report/summary.h"
#include "replay/trace/profile_file.h"

namespace KIVRA::TSHARK::REPLAY {

class table_report final : public report {
  public:
    /// @param out outlives the object
    /// @param all whether every record gets a line
    /// @param profile the run's, outlives the object
    table_report(std::ostream& out, bool coloured, bool all, const profile_file& profile)
        : out_(out), coloured_(coloured), all_(all), profile_(profile) {}

    void begin(const std::string& heading) override;
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;
    void end(const capture_content& captures) override;

  private:
    /// A line of the table; kept while it is the first of a run.
    struct row {
        std::string number;
        std::string time;
        std::string text;
    };

    row row_of(std::uint64_t number, const trace_record& record, const outcome& result,
               const std::vector<detail_value>& details) const;
    std::string painted(std::string_view colour, const std::string& text) const;
    void finish_run();
    void print(const row& line);

    std::ostream& out_;
    bool coloured_;
    bool all_;
    const profile_file& profile_;
    novelty novelty_;
    record_run run_;
    row first_of_run_;
    summary summary_;
};

}  // namespace KIVRA::TSHARK::REPLAY
