/// A run as a part of a web page for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/page/page_file.h"
#include "replay/page/page_rows.h"
#include "replay/report/report.h"
#include "replay/report/run_totals.h"
#include "replay/trace/profile_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// What a page says of a run besides its records.
struct page_heading {
    /// Of this program, such as "0.13.1".
    std::string version;
    /// The first line of what tshark says of itself.
    std::string tshark;
    /// In their order.
    std::vector<std::string> captures;
};

/// Writes the records as they come; its size does not grow with their number.
class page_report final : public report {
  public:
    /// @param page gets a block for the heading, one for the records (see `page_rows`) and one for
    ///     the summary; outlives the object
    /// @param profile the run's, outlives the object
    page_report(page_file& page, page_heading heading, const profile_file& profile)
        : page_(page), heading_(std::move(heading)), profile_(profile) {}

    /// @throws std::runtime_error when the page can't be written; the others do so as well
    void begin(const std::string& heading) override;
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;
    void end(const capture_content& captures) override;

  private:
    page_file& page_;
    page_heading heading_;
    const profile_file& profile_;
    page_rows rows_;
    run_totals totals_;
};

}  // namespace KIVRA::TSHARK::REPLAY
