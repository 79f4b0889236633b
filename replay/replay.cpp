#include "replay/replay.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/console/console.h"
#include "platform/platform.h"
#include "replay/find_tshark.h"
#include "replay/input/capture_stream.h"
#include "replay/output.h"
#include "replay/page/page_file.h"
#include "replay/page/page_report.h"
#include "replay/progress.h"
#include "replay/record/path_text.h"
#include "replay/report/formatting.h"
#include "replay/report/json_lines.h"
#include "replay/report/summary_file.h"
#include "replay/report/table_report.h"
#include "replay/runner/in_process.h"
#include "replay/runner/plugin.h"
#include "replay/trace/profile_file.h"
#include "replay/tshark_version.h"
#include "sink/tshark_discovery.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using PLATFORM::standard_stream;

/// What would be written over a capture: a report or the profile.
void refuse_to_overwrite_captures(const options& wanted) {
    for (const auto& source : wanted.captures) {
        for (const auto& target : {wanted.output, wanted.profile, wanted.summary, wanted.report}) {
            std::error_code missing;
            if (fs::equivalent(source, target, missing)) {
                throw std::runtime_error(text_of(target) + " is a capture to read, not to write");
            }
        }
    }
}

fs::path tshark_directory(const options& wanted) {
    return wanted.tshark_directory.empty()
               ? find_tshark_directory(PLATFORM::path_variable().value_or(""))
               : wanted.tshark_directory;
}

/// The executable; a plug-in that is told of a folder without one says so itself.
fs::path tshark_in(const fs::path& directory, const options& wanted) {
    try {
        return SINK::tshark_executable(directory);
    } catch (const std::runtime_error&) {
        if (wanted.plugin.empty()) {
            throw;
        }
        return directory / "tshark";
    }
}

std::vector<std::unique_ptr<report>> reports_for(const options& wanted, output& out,
                                                 const profile_file& profile) {
    std::vector<std::unique_ptr<report>> reports;
    if (wanted.json) {
        reports.push_back(std::make_unique<json_lines>(out.stream()));
    } else if (!wanted.quiet) {
        reports.push_back(
            std::make_unique<table_report>(out.stream(), out.takes_colour(), wanted.all, profile));
    }
    if (!wanted.summary.empty()) {
        reports.push_back(std::make_unique<summary_file>(wanted.summary, profile));
    }
    return reports;
}

/// What the page says of the run.
page_heading heading_for(const options& wanted, const fs::path& tshark) {
    page_heading heading{
        .version = KIVRA_VERSION, .tshark = tshark_version(tshark), .captures = {}};
    for (const auto& capture : wanted.captures) {
        heading.captures.push_back(text_of(capture));
    }
    return heading;
}

/// The records of a stream on their way through a runner into the reports.
class replay_run {
  public:
    replay_run(const options& wanted, output& out, std::vector<std::unique_ptr<report>> reports,
               record_runner& runner)
        : quiet_(wanted.quiet), out_(out), reports_(std::move(reports)), runner_(runner) {}

    /// @param heading what runs the records, for people
    exit_status run(const std::string& heading, capture_stream& records);

    /// Reports what was read so far.
    void catch_up();

  private:
    std::optional<trace_record> next_of(capture_stream& records);
    void add(const trace_record& record, const outcome& result);
    void complain(const std::exception& error);
    void print_count() const;
    exit_status status() const;

    bool quiet_;
    output& out_;
    std::vector<std::unique_ptr<report>> reports_;
    record_runner& runner_;
    const outcome_handler add_ = [this](const trace_record& record, const outcome& result) {
        add(record, result);
    };
    std::optional<progress> progress_;
    std::uint64_t read_ = 0;
    std::uint64_t reported_ = 0;
    std::uint64_t failed_ = 0;
    bool capture_broke_ = false;
    bool a_capture_is_empty_ = false;
};

exit_status replay_run::run(const std::string& heading, capture_stream& records) {
    const bool shows_progress = !quiet_ && PLATFORM::is_terminal(standard_stream::error);
    progress_.emplace(shows_progress ? &std::cerr : nullptr, records.size());
    for (const auto& form : reports_) {
        form->begin(heading);
    }
    out_.flush();
    while (const auto record = next_of(records)) {
        progress_->draw(records.position(), ++read_);
        runner_.submit(*record, add_);
    }
    catch_up();
    if (!PLATFORM::interrupted()) {
        runner_.complete();
    }
    progress_->clear();
    for (const auto& form : reports_) {
        form->end(records.content());
    }
    out_.flush();
    print_count();
    return status();
}

void replay_run::catch_up() {
    runner_.finish(add_);
}

/// The next record; nothing at the end of the stream, or after an interruption.
std::optional<trace_record> replay_run::next_of(capture_stream& records) {
    while (!PLATFORM::interrupted()) {
        try {
            return records.next();
        } catch (const no_records& error) {
            a_capture_is_empty_ = true;
            complain(error);
        } catch (const capture_error& error) {
            // An interruption breaks off a read.
            if (!PLATFORM::interrupted()) {
                capture_broke_ = true;
                complain(error);
            }
        }
    }
    return std::nullopt;
}

void replay_run::complain(const std::exception& error) {
    catch_up();
    progress_->clear();
    print_error(error.what());
}

void replay_run::add(const trace_record& record, const outcome& result) {
    progress_->clear();
    ++reported_;
    failed_ += result.failure ? 1 : 0;
    for (const auto& form : reports_) {
        form->add(reported_, record, result);
    }
    out_.flush();
}

void replay_run::print_count() const {
    if (!quiet_ && !PLATFORM::is_terminal(standard_stream::error)) {
        std::cerr << pluralise(reported_, "record") << ", " << failed_ << " failed\n";
    }
}

exit_status replay_run::status() const {
    if (capture_broke_) {
        return broken_off;
    }
    return failed_ == 0 && !a_capture_is_empty_ ? all_went_through : some_failed;
}

/// A runner, and what it is, for people.
struct described_runner {
    std::unique_ptr<record_runner> runner;
    std::string description;
};

described_runner runner_for(const options& wanted, const fs::path& directory,
                            const fs::path& tshark) {
    if (wanted.plugin.empty()) {
        return {std::make_unique<in_process>(tshark, wanted.profile),
                "one tshark in " + text_of(directory) + " for all records"};
    }
    const auto loaded = std::make_shared<const plugin>(wanted.plugin);
    const auto description = loaded->describe();
    return {
        std::make_unique<plugin_sink>(loaded, directory, tshark, wanted.profile, wanted.session),
        text_of(wanted.plugin) + ' ' + description.version +
            (wanted.session ? ", one tshark in " : ", tshark in ") + text_of(directory)};
}

}  // namespace

exit_status replay(const options& wanted) {
    refuse_to_overwrite_captures(wanted);
    const profile_file profile(wanted.profile);
    const auto directory = tshark_directory(wanted);
    const auto tshark = tshark_in(directory, wanted);
    const auto [runner, description] = runner_for(wanted, directory, tshark);
    output out(wanted.output);
    auto reports = reports_for(wanted, out, profile);
    std::optional<page_file> page;
    if (!wanted.report.empty()) {
        page.emplace(wanted.report);
        reports.push_back(
            std::make_unique<page_report>(*page, heading_for(wanted, tshark), profile));
    }
    replay_run run(wanted, out, std::move(reports), *runner);
    capture_stream records(wanted.captures, tshark, wanted.extraction, [&run] { run.catch_up(); });
    const auto status = run.run(description, records);
    if (page) {
        page->finish();
    }
    return status;
}

void print_error(std::string_view message) {
    std::cerr << "kivra-replay: " << printable(message) << '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
