/// What a run over many captures tells: a line and a row for each, and counts in the end.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "replay/fleet/fleet_row.h"
#include "replay/options.h"
#include "replay/output.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

class fleet_report {
  public:
    /// @param wanted whose output gets the lines, unless it is quiet
    /// @param table the table's file, created or overwritten; empty for none
    /// @throws std::runtime_error when a file can't be written
    fleet_report(const options& wanted, const std::filesystem::path& table);

    /// Adds a capture; its error goes to the standard error.
    /// @throws reader_gone, or std::runtime_error when a file can't be written
    void take(const fleet_row& row);

    /// Prints the counts.
    /// @param captures how many there were to be run
    /// @return all_went_through, some_failed, or broken_off when no capture could be read
    /// @throws as `take`
    exit_status finish(std::size_t captures);

  private:
    void print_line(const fleet_row& row);
    void print_counts(std::size_t captures);
    exit_status status(std::size_t captures) const;

    bool quiet_;
    output out_;
    std::optional<output> table_;
    std::size_t taken_ = 0;
    std::map<std::string, std::size_t> statuses_;
    std::map<std::string, std::size_t> psm_;
};

}  // namespace KIVRA::TSHARK::REPLAY
