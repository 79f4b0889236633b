#include "replay/fleet_report.h"

#include <iomanip>
#include <ostream>
#include <system_error>

#include "replay/fleet/csv.h"
#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr const char* overview_name = "index.html";

void print(std::ostream& out, const char* title, const std::map<std::string, std::size_t>& counts) {
    constexpr int names_width = 20;
    constexpr int counts_width = 8;
    if (counts.empty()) {
        return;
    }
    out << '\n' << title << '\n';
    for (const auto& [name, count] : counts) {
        out << "    " << std::left << std::setw(names_width) << name << std::right
            << std::setw(counts_width) << count << '\n';
    }
}

}  // namespace

std::filesystem::path overview_file(const options& wanted) {
    return wanted.report.empty() ? std::filesystem::path() : wanted.report / overview_name;
}

fleet_report::fleet_report(const options& wanted, const std::filesystem::path& table,
                           const std::string& tshark)
    : quiet_(wanted.quiet), out_(wanted.output) {
    if (!table.empty()) {
        table_.emplace(table);
        table_->stream() << csv_line(fleet_columns());
        table_->flush();
    }
    if (!wanted.report.empty()) {
        std::error_code told_by_the_page;
        std::filesystem::create_directories(wanted.report, told_by_the_page);
        overview_.emplace(overview_file(wanted),
                          overview_heading{.version = KIVRA_VERSION, .tshark = tshark});
    }
}

void fleet_report::take(const fleet_row& row) {
    if (table_) {
        table_->stream() << csv_line({row.begin(), row.end()});
        table_->flush();
    }
    if (overview_) {
        overview_->add(row);
    }
    ++taken_;
    ++statuses_[cell_of(row, "status")];
    if (const auto& psm = cell_of(row, "psm"); !psm.empty()) {
        ++psm_[psm];
    }
    if (const auto& error = cell_of(row, "error"); !error.empty()) {
        // Errors of captures name them; what ends a process tells nothing.
        print_error(error.find(row.front()) == std::string::npos ? row.front() + ": " + error
                                                                 : error);
    }
    if (!quiet_) {
        print_line(row);
    }
    out_.flush();
}

void fleet_report::print_line(const fleet_row& row) {
    auto& out = out_.stream();
    out << printable(row.front()) << ": " << cell_of(row, "status");
    if (const auto& records = cell_of(row, "records"); !records.empty()) {
        out << ", " << records << (records == "1" ? " record" : " records");
    }
    if (const auto& failed = cell_of(row, "failed_records"); !failed.empty() && failed != "0") {
        out << ", " << failed << " failed";
    }
    if (const auto& codes = cell_of(row, "mcc_mnc"); !codes.empty()) {
        out << ", network " << codes;
    }
    if (const auto& psm = cell_of(row, "psm"); !psm.empty()) {
        out << ", PSM " << psm;
    }
    out << '\n';
}

exit_status fleet_report::finish(std::size_t captures) {
    if (overview_) {
        overview_->finish(captures);
    }
    if (!quiet_) {
        print_counts(captures);
    }
    out_.flush();
    return status(captures);
}

void fleet_report::print_counts(std::size_t captures) {
    auto& out = out_.stream();
    if (taken_ < captures) {
        out << "\ninterrupted: " << taken_ << " of " << captures << " captures done\n";
    }
    print(out, "captures", statuses_);
    print(out, "PSM", psm_);
}

exit_status fleet_report::status(std::size_t captures) const {
    const auto of = [this](const char* status) {
        const auto found = statuses_.find(status);
        return found == statuses_.end() ? 0 : found->second;
    };
    if (of("unreadable") + of("crashed") == taken_) {
        return broken_off;
    }
    return of("ok") == captures ? all_went_through : some_failed;
}

}  // namespace KIVRA::TSHARK::REPLAY
