#include "replay/watch_folder.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unordered_set>
#include <vector>

#include "platform/console/console.h"
#include "platform/console/folder_watch.h"
#include "replay/each_capture.h"
#include "replay/fleet/capture_job.h"
#include "replay/fleet/capture_list.h"
#include "replay/fleet/capture_queue.h"
#include "replay/fleet/scratch_folder.h"
#include "replay/fleet/table_journal.h"
#include "replay/fleet_report.h"
#include "replay/output.h"
#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;

std::runtime_error watch_error(const fs::path& folder, const std::error_code& reason) {
    return std::runtime_error("can't watch " + text_of(folder) + ": " + reason.message());
}

PLATFORM::folder_watch watch(const options& wanted) {
    const auto& folder = wanted.captures.front();
    try {
        return {folder,
                {.file = has_name_of_capture,
                 .folder = [recursive = wanted.recursive](const fs::path& name) {
                     return recursive && !is_hidden(name);
                 }}};
    } catch (const std::system_error& error) {
        throw watch_error(folder, error.code());
    }
}

/// @return the options, whose output is none of the files
const options& checked(const options& wanted, const std::vector<fs::path>& captures) {
    for (const auto& capture : captures) {
        refuse_to_overwrite(capture, {wanted.output});
    }
    std::error_code missing;
    if (fs::equivalent(wanted.output, wanted.table, missing)) {
        throw std::runtime_error(text_of(wanted.output) +
                                 " is the table, and can't be the output, too");
    }
    return wanted;
}

/// A new folder beside the table. There the next run finds what a killed one has left, and what
/// still runs of that writes to nothing that is in use.
fs::path scratch_parent(const fs::path& table) {
    return table.has_parent_path() ? table.parent_path() : ".";
}

std::string scratch_name(const fs::path& table) {
    return '.' + text_of(table.filename()) + ".kivra-";
}

class watch_run {
  public:
    explicit watch_run(const options& wanted)
        : wanted_(wanted),
          program_(program_for(wanted)),
          watch_(watch(wanted)),
          first_news_(watch_.next(std::chrono::milliseconds(0))),
          journal_(wanted.table),
          known_(journal_.take_captures()),
          scratch_(scratch_in_place(wanted.table)),
          report_(checked(wanted, first_news_.files), {}, {}) {}

    exit_status run() {
        PLATFORM::note_all_interruptions();
        capture_queue queue(jobs_of(wanted_), [this](const fs::path& capture, std::size_t job) {
            run(capture, job);
        });
        take(first_news_, queue);
        bool is_gone = first_news_.is_gone;
        while (!is_gone && !PLATFORM::interrupted() && !queue.has_ended()) {
            const auto news = watch_.next(std::chrono::milliseconds(100));
            take(news, queue);
            is_gone = news.is_gone;
        }
        queue.end();
        const auto status = report_.finish(taken_);
        if (is_gone) {
            throw std::runtime_error(text_of(wanted_.captures.front()) + " is no longer there");
        }
        return status;
    }

  private:
    static scratch_folder scratch_in_place(const fs::path& table) {
        const auto parent = scratch_parent(table);
        // The table is this run's: they are those of runs that have ended.
        remove_scratch_folders(parent, scratch_name(table));
        return {parent, scratch_name(table)};
    }

    void take(const PLATFORM::folder_news& news, capture_queue& queue) {
        const std::scoped_lock lock(mutex_);
        for (const auto& [folder, reason] : news.obstacles) {
            print_error(watch_error(folder, reason).what());
        }
        for (const auto& file : news.files) {
            if (!known_.insert(text_of(file)).second) {
                continue;
            }
            if (const auto obstacle = obstacle_to_naming(file)) {
                print_error(*obstacle);
            } else {
                ++taken_;
                queue.add(file);
            }
        }
    }

    /// In any thread.
    void run(const fs::path& capture, std::size_t job) {
        const fs::path scratch = scratch_.path() / std::to_string(job);
        const capture_files files{capture, scratch / "summary.json", scratch / "profile.json", {}};
        const auto row = run_capture(program_, files, PLATFORM::interrupted);
        if (!row) {
            return;
        }
        const std::scoped_lock lock(mutex_);
        std::error_code unreachable;
        if (cell_of(*row, "status") == "unreadable" && !fs::exists(capture, unreachable)) {
            forget(row->front());
            return;
        }
        if (!wanted_.summary.empty()) {
            keep_summary(files.summary, capture);
        }
        journal_.add(*row);
        report_.take(*row);
    }

    /// One that has gone away before it was read. It may come again.
    void forget(const std::string& capture) {
        print_error(capture + " is no longer there, and has no row");
        known_.erase(capture);
        --taken_;
    }

    void keep_summary(const fs::path& summary, const fs::path& capture) const {
        const auto name = capture.lexically_relative(wanted_.captures.front());
        const auto file = file_for(wanted_.summary, name, ".summary.json");
        try {
            if (fs::exists(summary)) {
                fs::create_directories(file.parent_path());
                fs::copy_file(summary, file, fs::copy_options::overwrite_existing);
            } else {
                fs::remove(file);
            }
        } catch (const fs::filesystem_error& error) {
            throw write_error(text_of(file), error.code().value());
        }
    }

    const options& wanted_;
    capture_program program_;
    PLATFORM::folder_watch watch_;
    PLATFORM::folder_news first_news_;
    table_journal journal_;
    std::mutex mutex_;
    // Of these the mutex takes care, as of the journal and the report.
    std::unordered_set<std::string> known_;
    std::size_t taken_ = 0;
    scratch_folder scratch_;
    fleet_report report_;
};

}  // namespace

exit_status watch_folder(const options& wanted) {
    return watch_run(wanted).run();
}

}  // namespace KIVRA::TSHARK::REPLAY
