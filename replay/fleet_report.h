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
#include "replay/overview/fleet_overview.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

/// The page over all captures in the folder of --report; empty without one.
std::filesystem::path overview_file(const options& wanted);

class fleet_report {
  public:
    /// @param wanted whose output gets the lines, unless it is quiet, and whose report the overview
    /// @param table the table's file, created or overwritten; empty for none
    /// @param tshark the first line of what tshark says of itself; empty where it is not known
    /// @throws std::runtime_error when a file can't be written
    fleet_report(const options& wanted, const std::filesystem::path& table,
                 const std::string& tshark);

    /// Adds a capture; its error goes to the standard error.
    /// @throws reader_gone, or std::runtime_error when a file can't be written
    void take(const fleet_row& row);

    /// Prints the counts, and ends the overview.
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
    std::optional<fleet_overview> overview_;
    std::size_t taken_ = 0;
    std::map<std::string, std::size_t> statuses_;
    std::map<std::string, std::size_t> psm_;
};

}  // namespace KIVRA::TSHARK::REPLAY
