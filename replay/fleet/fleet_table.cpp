#include "replay/fleet/fleet_table.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "replay/record/capture_error.h"
#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

fleet_table::fleet_table(std::filesystem::path file)
    : path_(std::move(file)), stream_(path_, std::ios::binary), reader_(stream_) {
    // A folder can be opened, and not be read.
    if (!stream_.is_open() || (stream_.peek(), stream_.bad())) {
        throw capture_error(text_of(path_), std::generic_category().message(errno));
    }
    fleet_row names;
    if (reader_.next(names) != csv_part::line || !std::ranges::equal(names, fleet_columns())) {
        throw std::runtime_error(text_of(path_) +
                                 " is no table of this version: its columns are others");
    }
}

std::optional<fleet_row> fleet_table::next() {
    fleet_row row;
    const auto part = reader_.next(row);
    is_torn_ = part == csv_part::torn_line;
    if (is_torn_ || part == csv_part::end) {
        return std::nullopt;
    }
    ++lines_;
    if (part == csv_part::malformed || row.size() != fleet_columns().size()) {
        throw std::runtime_error(text_of(path_) + ": row " + std::to_string(lines_) +
                                 " is not one of this table");
    }
    return row;
}

}  // namespace KIVRA::TSHARK::REPLAY
