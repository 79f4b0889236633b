#include "replay/each_capture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <set>
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
#include "replay/fleet_report.h"
#include "replay/output.h"
#include "replay/page/page_file.h"
#include "replay/page/run_page.h"
#include "replay/progress.h"
#include "replay/record/path_text.h"
#include "replay/tshark_version.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using PLATFORM::standard_stream;

constexpr const char* summary_ending = ".summary.json";
constexpr const char* profile_ending = ".profile.json";
constexpr const char* page_ending = ".html";

/// Empty where only a plug-in could say that there is no tshark.
std::string version_of_tshark(const options& wanted) {
    const auto tshark = find_tshark(wanted).executable;
    return wanted.report.empty() || tshark.empty() ? "" : tshark_version(tshark);
}

void refuse_same_names(const std::vector<listed_capture>& captures) {
    std::map<fs::path, fs::path> files;
    for (const auto& [file, name] : captures) {
        const auto [known, is_new] = files.emplace(name, file);
        if (!is_new) {
            throw std::runtime_error(text_of(known->second) + " and " + text_of(file) +
                                     " would have the same file in the folder of --summary, "
                                     "--profile or --report");
        }
    }
}

void refuse_page_of_overview(const std::vector<listed_capture>& captures,
                             const fs::path& overview) {
    for (const auto& [file, name] : captures) {
        if (file_for({}, name, page_ending) == overview.filename()) {
            throw std::runtime_error("the page of " + text_of(file) +
                                     " would be the overview's, index.html");
        }
    }
}

/// What is kept for each capture.
struct kept_files {
    fs::path folder;
    std::string ending;
};

std::vector<kept_files> files_kept(const options& wanted) {
    std::vector<kept_files> kept{{wanted.summary, summary_ending},
                                 {wanted.profile, profile_ending},
                                 {wanted.report, page_ending}};
    std::erase_if(kept, [](const kept_files& files) { return files.folder.empty(); });
    return kept;
}

/// Where a file stands, or would: what is written for a capture replaces a link, too.
fs::path place_of(const fs::path& file) {
    return fs::weakly_canonical(fs::absolute(file).parent_path()) / file.filename();
}

/// Captures, and files of the whole run, in whose place a capture's file would be written.
void refuse_replacing(const options& wanted, const std::vector<listed_capture>& captures) {
    const auto kept = files_kept(wanted);
    std::set<fs::path> threatened;
    // Few are called as a capture's files.
    const auto consider = [&](const fs::path& file) {
        const auto name = text_of(file.filename());
        if (std::ranges::any_of(kept,
                                [&](const auto& files) { return name.ends_with(files.ending); })) {
            threatened.insert(place_of(file));
        }
    };
    consider(wanted.output);
    consider(wanted.table);
    for (const auto& capture : captures) {
        consider(capture.file);
    }
    if (threatened.empty()) {
        return;
    }
    for (const auto& capture : captures) {
        for (const auto& [folder, ending] : kept) {
            const auto file = file_for(folder, capture.name, ending.c_str());
            if (threatened.contains(place_of(file))) {
                throw std::runtime_error("a file of " + text_of(capture.file) + " would replace " +
                                         text_of(file));
            }
        }
    }
}

class each_run {
  public:
    each_run(const options& wanted, std::vector<listed_capture> captures)
        : wanted_(wanted),
          captures_(std::move(captures)),
          program_(program_for(wanted)),
          report_(wanted, wanted.table, version_of_tshark(wanted)),
          progress_(shows_progress() ? &std::cerr : nullptr, size_of_all(), progress::clock::now,
                    "capture") {}

    exit_status run() {
        PLATFORM::note_all_interruptions();
        const auto failure = run_fleet(
            {.captures = captures_.size(),
             .jobs = jobs_of(wanted_),
             .run = [this](std::size_t capture, std::size_t job) { return run(capture, job); },
             .take =
                 [this](std::size_t, const fleet_row& row) {
                     progress_.clear();
                     report_.take(row);
                 },
             .ended = [this](std::size_t capture) { count(capture); }});
        progress_.clear();
        const auto status = report_.finish(captures_.size());
        if (failure) {
            std::rethrow_exception(failure);
        }
        return status;
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

    /// Removes what a run that was ended has left.
    static bool keep_whole_page(const fs::path& page) {
        if (is_whole_page(page, run_page())) {
            return true;
        }
        std::error_code missing;
        fs::remove(page, missing);
        return false;
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
                                    : file_for(wanted_.summary, name, summary_ending),
            wanted_.profile.empty() ? scratch / "profile.json"
                                    : file_for(wanted_.profile, name, profile_ending),
            wanted_.report.empty() ? fs::path() : file_for(wanted_.report, name, page_ending)};
        auto row = run_capture(program_, files, PLATFORM::interrupted);
        if (keep_whole_page(files.page) && row) {
            set_page(*row, generic_text_of(file_for({}, name, page_ending)));
        }
        return row;
    }

    void count(std::size_t number) {
        bytes_ += size_of(captures_[number]);
        progress_.draw(bytes_, ++ended_);
    }

    const options& wanted_;
    std::vector<listed_capture> captures_;
    capture_program program_;
    scratch_folder scratch_;
    fleet_report report_;
    progress progress_;
    std::uint64_t bytes_ = 0;
    std::size_t ended_ = 0;
};

}  // namespace

capture_program program_for(const options& wanted) {
    std::vector<std::string> arguments{"--quiet", "--one-of-many"};
    if (wanted.profile.empty()) {
        arguments.emplace_back("--temporary-profile");
    }
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
    return {PLATFORM::program_file(), std::move(arguments)};
}

std::size_t jobs_of(const options& wanted) {
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    return wanted.jobs == 0 ? cores : wanted.jobs;
}

exit_status replay_each(const options& wanted) {
    auto least_status = all_went_through;
    auto captures = list_captures(wanted.captures, wanted.recursive, [&](const std::string& why) {
        print_error(why);
        least_status = some_failed;
    });
    if (!wanted.summary.empty() || !wanted.profile.empty() || !wanted.report.empty()) {
        refuse_same_names(captures);
    }
    if (!wanted.report.empty()) {
        refuse_page_of_overview(captures, overview_file(wanted));
    }
    const std::vector<fs::path> outputs{wanted.output, wanted.table, overview_file(wanted)};
    refuse_same_targets(outputs);
    for (const auto& capture : captures) {
        refuse_to_overwrite(capture.file, outputs);
    }
    refuse_replacing(wanted, captures);
    return std::max(least_status, each_run(wanted, std::move(captures)).run());
}

}  // namespace KIVRA::TSHARK::REPLAY
