/// What a table of many captures says of each.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {

/// What kivra-replay has made of a capture.
struct capture_result {
    /// Its exit status.
    int exit_status = 0;
    /// The first line of what it complained of; may be empty.
    std::string error;
    /// As `--summary` writes it (docs/summary.schema.json); nothing when it was not written.
    std::optional<nlohmann::json> summary;
};

/// The names of the columns, with their units; docs/fleet.md describes them.
std::vector<std::string_view> fleet_columns();

/// A capture's cells, as many as there are columns. What is not known is empty.
using fleet_row = std::vector<std::string>;

/// @param capture its name in the table
fleet_row row_of(const std::string& capture, const capture_result& result);

/// Names the capture's page.
/// @param page its path below the folder of pages, with "/"
void set_page(fleet_row& row, std::string page);

/// A row's cell.
/// @param column one of the names
const std::string& cell_of(const fleet_row& row, std::string_view column);

}  // namespace KIVRA::TSHARK::REPLAY
