/// Many captures as a web page for people.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "replay/fleet/fleet_row.h"
#include "replay/page/page_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// What an overview says besides its rows.
struct overview_heading {
    /// Of this program, such as "0.13.1".
    std::string version;
    /// The first line of what tshark says of itself; empty where it is not known.
    std::string tshark;
};

/// Writes the rows as they come; its size does not grow with their number. The page holds a block
/// for the heading with the names of the columns, one for the rows: an array of arrays of texts, a
/// cell each, with 0 for a cell that is that of the row before (of the first row: empty); and one
/// for the number of captures that there were to be.
class fleet_overview {
  public:
    /// @param file created or overwritten
    /// @throws std::runtime_error when it can't be written; the others do so as well
    fleet_overview(std::filesystem::path file, const overview_heading& heading);

    /// @param row with a cell for each of `fleet_columns()`; `page` is relative to the file's
    /// folder
    void add(const fleet_row& row);

    /// Writes the page's end, behind all rows.
    /// @param captures how many there were to be run; more than rows when it was interrupted
    void finish(std::size_t captures);

  private:
    page_file page_;
    fleet_row last_;
    std::string_view separator_ = "\n";
};

}  // namespace KIVRA::TSHARK::REPLAY
