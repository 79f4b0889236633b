/// A table that is its run's memory, too: it says which captures are done.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/console/journal_file.h"
#include "replay/fleet/fleet_row.h"

namespace KIVRA::TSHARK::REPLAY {

class table_journal {
  public:
    /// Goes on with the table, or begins one. A line that is torn, since the run that wrote it was
    /// ended in the middle, is cut off.
    /// @throws std::runtime_error when the file is no table of this version, which leaves it as it
    ///     is, when another run has it, or when it can't be read or written
    explicit table_journal(std::filesystem::path file);

    /// The captures of the rows that stood there; they are given once.
    std::unordered_set<std::string> take_captures() { return std::exchange(captures_, {}); }

    /// Adds a row, which is on the disk then.
    /// @throws std::runtime_error when it can't be written
    void add(const fleet_row& row);

  private:
    void take_up();

    std::filesystem::path path_;
    PLATFORM::journal_file file_;
    std::unordered_set<std::string> captures_;
};

}  // namespace KIVRA::TSHARK::REPLAY
