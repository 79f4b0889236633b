/// Tables of captures, as they were written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

#include "replay/fleet/csv.h"
#include "replay/fleet/fleet_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// Reads a table row by row.
class fleet_table {
  public:
    /// @throws capture_error when the file can't be read; std::runtime_error when it has other
    ///     columns than `fleet_columns`
    explicit fleet_table(std::filesystem::path file);

    /// The next row; nothing behind the last one, and from a line on that is torn.
    /// @throws std::runtime_error for a line that is no row
    std::optional<fleet_row> next();

    /// Whether the file ends within a line; known when there are no more rows.
    bool is_torn() const { return is_torn_; }

    /// How many bytes the columns' names and the rows had so far.
    std::uint64_t position() const { return reader_.position(); }

  private:
    std::filesystem::path path_;
    std::ifstream stream_;
    csv_reader reader_;
    std::uint64_t lines_ = 0;
    bool is_torn_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
