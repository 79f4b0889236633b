/// The report for programs: JSON Lines, without a heading or an end.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "replay/report/report.h"

namespace KIVRA::TSHARK::REPLAY {

/// Each record as one line:
///
/// | member    | what                                                                     |
/// |-----------|--------------------------------------------------------------------------|
/// | number    | the record's, from 1                                                     |
/// | time      | of the record, as `iso_8601` has it                                      |
/// | format    | the dissector's name, text                                               |
/// | result    | the result document, null when there is none; missing on a failure       |
/// | error     | why the record failed, text; only then                                   |
/// | malformed | true when tshark could not read the message to its end; only then        |
/// | log       | the log messages meanwhile: array of {"level": integer, "message": text} |
///
/// What is no UTF-8 in a text becomes U+FFFD.
class json_lines final : public report {
  public:
    /// @param out outlives the object
    explicit json_lines(std::ostream& out) : out_(out) {}

    void begin(const std::string& heading) override;
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;
    void end(const capture_content& captures) override;

  private:
    std::ostream& out_;
};

}  // namespace KIVRA::TSHARK::REPLAY
