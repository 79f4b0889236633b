#include "replay/fleet/table_journal.h"

#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "replay/fleet/csv.h"
#include "replay/fleet/fleet_table.h"
#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;

PLATFORM::journal_file open_journal(const fs::path& file) {
    try {
        return PLATFORM::journal_file(file);
    } catch (const PLATFORM::file_in_use&) {
        throw std::runtime_error("another run writes " + text_of(file));
    } catch (const std::system_error& error) {
        throw write_error(text_of(file), error.code().value());
    }
}

/// Nothing, or the beginning of the first line.
bool has_barely_begun(const fs::path& file, const std::string& first_line) {
    std::ifstream stream(file, std::ios::binary);
    std::string beginning(first_line.size(), '\0');
    stream.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    beginning.resize(static_cast<std::size_t>(stream.gcount()));
    return beginning.size() < first_line.size() && first_line.starts_with(beginning);
}

}  // namespace

table_journal::table_journal(fs::path file) : path_(std::move(file)), file_(open_journal(path_)) {
    try {
        take_up();
    } catch (const std::system_error& error) {
        throw write_error(text_of(path_), error.code().value());
    }
}

void table_journal::take_up() {
    const auto columns = csv_line(fleet_columns());
    if (has_barely_begun(path_, columns)) {
        file_.cut(0);
        file_.append(columns);
        return;
    }
    fleet_table table(path_);
    for (auto row = table.next(); row; row = table.next()) {
        captures_.insert(std::move(row->front()));
    }
    if (table.is_torn()) {
        file_.cut(table.position());
    }
}

void table_journal::add(const fleet_row& row) {
    try {
        file_.append(csv_line({row.begin(), row.end()}));
    } catch (const std::system_error& error) {
        throw write_error(text_of(path_), error.code().value());
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
