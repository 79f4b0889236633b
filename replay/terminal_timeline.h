/// The trace as lines of characters, at the end of the table on a terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "replay/report/report.h"
#include "replay/trace/connection_log.h"

namespace KIVRA::TSHARK::REPLAY {

/// When the modem was connected and when idle, and when it attached, updated its tracking area, was
/// paged and was released. Its size does not grow with the number of records: it keeps what
/// happened in each of some thousand spans of time, which become longer with the trace.
class terminal_timeline final : public report {
  public:
    /// A terminal with fewer columns has no room for it.
    static constexpr std::size_t least_columns = 80;

    /// @param out outlives the object
    /// @param columns of the terminal
    terminal_timeline(std::ostream& out, std::size_t columns);

    void begin(const std::string& /*heading*/) override {}
    void add(std::uint64_t number, const trace_record& record, const outcome& result) override;
    void end(const capture_content& captures) override;

  private:
    void note(std::uint8_t what, std::uint64_t from, std::uint64_t to);
    std::size_t span_of(std::uint64_t time);
    void double_spans();
    void print_line(const char* name, const std::vector<std::uint8_t>& columns, std::uint8_t what,
                    char mark);

    std::ostream& out_;
    std::size_t columns_;
    connection_log connections_;
    /// Of the first record.
    std::uint64_t begin_ = 0;
    std::uint64_t idle_since_ = 0;
    bool is_idle_ = false;
    /// What happened in each span.
    std::vector<std::uint8_t> spans_;
    /// In microseconds.
    std::uint64_t span_ = 1;
};

}  // namespace KIVRA::TSHARK::REPLAY
