#include "replay/fleet/csv.h"

#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// Where in a line a letter stands.
enum class place { cell_start, plain_cell, quoted_cell, behind_quotation, behind_return };

}  // namespace

std::string csv_line(const std::vector<std::string_view>& cells) {
    std::string line;
    std::string_view separator;
    for (const auto cell : cells) {
        line += std::exchange(separator, ",");
        if (cell.find_first_of(",\"\r\n") == std::string_view::npos) {
            line += cell;
            continue;
        }
        line += '"';
        for (const char letter : cell) {
            line.append(letter == '"' ? 2 : 1, letter);
        }
        line += '"';
    }
    return line + "\r\n";
}

csv_part csv_reader::next(std::vector<std::string>& cells) {
    constexpr auto end = std::istream::traits_type::eof();
    cells.assign(1, {});
    auto where = place::cell_start;
    std::uint64_t length = 0;
    for (auto read = stream_.get(); read != end; read = stream_.get()) {
        const char letter = std::istream::traits_type::to_char_type(read);
        ++length;
        if (where == place::quoted_cell) {
            if (letter == '"') {
                where = place::behind_quotation;
            } else {
                cells.back() += letter;
            }
        } else if (where == place::behind_return) {
            if (letter != '\n') {
                return csv_part::malformed;
            }
            position_ += length;
            return csv_part::line;
        } else if (letter == ',') {
            cells.emplace_back();
            where = place::cell_start;
        } else if (letter == '\r') {
            where = place::behind_return;
        } else if (letter == '"' && where != place::plain_cell) {
            // The second of two within a cell is a letter of it.
            cells.back().append(where == place::behind_quotation ? 1 : 0, letter);
            where = place::quoted_cell;
        } else if (letter == '"' || letter == '\n' || where == place::behind_quotation) {
            return csv_part::malformed;
        } else {
            cells.back() += letter;
            where = place::plain_cell;
        }
    }
    return length == 0 ? csv_part::end : csv_part::torn_line;
}

}  // namespace KIVRA::TSHARK::REPLAY
