#include "replay/join_tables.h"

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "platform/console/console.h"
#include "replay/fleet/fleet_table.h"
#include "replay/fleet_report.h"
#include "replay/output.h"
#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;

void refuse_to_overwrite_tables(const options& wanted) {
    const std::vector<fs::path> targets{wanted.output, wanted.table, overview_file(wanted)};
    refuse_same_targets(targets);
    for (const auto& source : wanted.captures) {
        for (const auto& target : targets) {
            std::error_code missing;
            if (fs::equivalent(source, target, missing)) {
                throw std::runtime_error(text_of(target) + " is a table to read, not to write");
            }
        }
    }
}

/// Sees that the tables can be joined.
/// @return how many rows they have
std::size_t check_tables(const std::vector<fs::path>& files) {
    std::unordered_map<std::string, const fs::path*> places;
    std::size_t rows = 0;
    for (const auto& file : files) {
        fleet_table table(file);
        for (auto row = table.next(); row; row = table.next()) {
            const auto [known, is_new] = places.emplace(row->front(), &file);
            // One run may have been given a capture twice.
            if (!is_new && known->second != &file) {
                throw std::runtime_error(row->front() + " stands in " + text_of(*known->second) +
                                         " and in " + text_of(file));
            }
            ++rows;
        }
        if (table.is_torn()) {
            throw std::runtime_error(text_of(file) + " ends in the middle of a row");
        }
    }
    return rows;
}

}  // namespace

exit_status join_tables(const options& wanted) {
    refuse_to_overwrite_tables(wanted);
    const auto rows = check_tables(wanted.captures);
    fleet_report report(wanted, wanted.table, {});
    for (const auto& file : wanted.captures) {
        fleet_table table(file);
        for (auto row = table.next(); row && !PLATFORM::interrupted(); row = table.next()) {
            report.take(*row);
        }
    }
    return report.finish(rows);
}

}  // namespace KIVRA::TSHARK::REPLAY
