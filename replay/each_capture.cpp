#include "replay/each_capture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/console/console.h"
#include "replay/find_tshark.h"
#include "replay/fleet/capture_job.h"
#include "replay/fleet/capture_list.h"
#include "replay/fleet/fleet_run.h"
#include "replay/fleet/scratch_folder.h"
#include "replay/output.h"
#include "replay/progress.h"
#include "replay/record/path_text.h"
#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using PLATFORM::standard_stream;

/// The options that a capture's own run shares with this one.
std::vector<std::string> shared_arguments(const options& wanted) {
    std::vector<std::string> arguments{"--quiet"};
    if (!wanted.plugin.empty()) {
        arguments.push_back("--plugin=" + text_of(wanted.plugin));
    }
    arguments.push_back("--tshark-directory=" + text_of(find_tshark(wanted).directory));
    if (wanted.session) {
        arguments.emplace_back("--session");
    }
    for (const auto& [number, protocol] : wanted.extraction.user_link_types) {
        arguments.push_back("--user-dlt=" + std::to_string(number) + '=' + protocol);
    }
    for (const auto& option : wanted.extraction.tshark_options) {
        arguments.push_back("--tshark-option=" + option);
    }
    return arguments;
}

/// "folder/lab/modem.pcapng.summary.json" for "lab/modem.pcapng".
fs::path file_for(const fs::path& folder, fs::path name, const char* ending) {
    name += ending;
    return folder / name;
}

void refuse_same_names(const std::vector<listed_capture>& captures) {
    std::map<fs::path, fs::path> files;
    for (const auto& [file, name] : captures) {
        const auto [known, is_new] = files.emplace(name, file);
        if (!is_new) {
            throw std::runtime_error(text_of(known->second) + " and " + text_of(file) +
                                     " would have the same file in the folder of --summary or "
                                     "--profile");
        }
    }
}

void print_counts(std::ostream& out, const char* title,
                  const std::map<std::string, std::size_t>& counts) {
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

class each_run {
  public:
    each_run(const options& wanted, std::vector<listed_capture> captures)
        : wanted_(wanted),
          captures_(std::move(captures)),
          program_{PLATFORM::program_file(), shared_arguments(wanted)},
          out_(wanted.output),
          progress_(shows_progress() ? &std::cerr : nullptr, size_of_all(), progress::clock::now,
                    "capture") {
        if (!wanted.table.empty()) {
            table_.emplace(wanted.table);
        }
    }

    exit_status run() {
        const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
        if (table_) {
            table_->stream() << csv_line(fleet_columns());
            table_->flush();
        }
        run_fleet(
            {.captures = captures_.size(),
             .jobs = wanted_.jobs == 0 ? cores : wanted_.jobs,
             .run = [this](std::size_t capture, std::size_t job) { return run(capture, job); },
             .take = [this](std::size_t, const fleet_row& row) { take(row); },
             .ended = [this](std::size_t capture) { count(capture); }});
        progress_.clear();
        if (!wanted_.quiet) {
            print_summary();
        }
        out_.flush();
        return status();
    }

  private:
    bool shows_progress() const {
        return !wanted_.quiet && PLATFORM::is_terminal(standard_stream::error);
    }

    static std::uint64_t size_of(const listed_capture& capture) {
        std::error_code unreachable;
        const auto size = fs::file_size(capture.file, unreachable);
        return unreachable ? 0 : size;
    }

    std::uint64_t size_of_all() const {
        std::uint64_t sum = 0;
        for (const auto& capture : captures_) {
            sum += size_of(capture);
        }
        return sum;
    }

    /// In any thread.
    std::optional<fleet_row> run(std::size_t number, std::size_t job) const {
        if (PLATFORM::interrupted()) {
            return std::nullopt;
        }
        const auto& [file, name] = captures_[number];
        const fs::path scratch = scratch_.path() / std::to_string(job);
        const capture_files files{
            file,
            wanted_.summary.empty() ? scratch / "summary.json"
                                    : file_for(wanted_.summary, name, ".summary.json"),
            wanted_.profile.empty() ? scratch / "profile.json"
                                    : file_for(wanted_.profile, name, ".profile.json")};
        constexpr int not_started = 2;
        capture_result result{.exit_status = not_started, .error = {}, .summary = {}};
        try {
            auto ended = run_capture(program_, files, PLATFORM::interrupted);
            if (!ended) {
                return std::nullopt;
            }
            result = std::move(*ended);
        } catch (const std::exception& error) {
            result.error = error.what();
        }
        return row_of(text_of(file), result);
    }

    void count(std::size_t number) {
        bytes_ += size_of(captures_[number]);
        progress_.draw(bytes_, ++ended_);
    }

    void take(const fleet_row& row) {
        if (table_) {
            table_->stream() << csv_line({row.begin(), row.end()});
            table_->flush();
        }
        const auto& status = cell_of(row, "status");
        ++statuses_[status];
        if (const auto& psm = cell_of(row, "psm"); !psm.empty()) {
            ++psm_[psm];
        }
        progress_.clear();
        if (const auto& error = cell_of(row, "error"); !error.empty()) {
            // Errors of captures name them; what ends a process tells nothing.
            print_error(error.find(row.front()) == std::string::npos ? row.front() + ": " + error
                                                                     : error);
        }
        if (!wanted_.quiet) {
            print_line(row);
        }
        out_.flush();
    }

    void print_line(const fleet_row& row) {
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

    void print_summary() {
        auto& out = out_.stream();
        if (ended_ < captures_.size()) {
            out << "\ninterrupted: " << ended_ << " of " << captures_.size() << " captures done\n";
        }
        print_counts(out, "captures", statuses_);
        print_counts(out, "PSM", psm_);
    }

    exit_status status() const {
        const auto of = [this](const char* status) {
            const auto found = statuses_.find(status);
            return found == statuses_.end() ? 0 : found->second;
        };
        if (of("unreadable") + of("crashed") == ended_) {
            return broken_off;
        }
        return of("ok") == captures_.size() ? all_went_through : some_failed;
    }

    const options& wanted_;
    std::vector<listed_capture> captures_;
    capture_program program_;
    scratch_folder scratch_;
    output out_;
    std::optional<output> table_;
    progress progress_;
    std::uint64_t bytes_ = 0;
    std::size_t ended_ = 0;
    std::map<std::string, std::size_t> statuses_;
    std::map<std::string, std::size_t> psm_;
};

}  // namespace

exit_status replay_each(const options& wanted) {
    auto captures = list_captures(wanted.captures, wanted.recursive);
    if (!wanted.summary.empty() || !wanted.profile.empty()) {
        refuse_same_names(captures);
    }
    for (const auto& capture : captures) {
        refuse_to_overwrite(capture.file, {wanted.output, wanted.table});
    }
    return each_run(wanted, std::move(captures)).run();
}

}  // namespace KIVRA::TSHARK::REPLAY
