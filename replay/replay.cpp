#include "replay/replay.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/console/console.h"
#include "replay/find_tshark.h"
#include "replay/input/capture_stream.h"
#include "replay/output.h"
#include "replay/page/page_file.h"
#include "replay/page/page_report.h"
#include "replay/page/run_page.h"
#include "replay/progress.h"
#include "replay/record/path_text.h"
#include "replay/report/formatting.h"
#include "replay/report/json_lines.h"
#include "replay/report/summary_file.h"
#include "replay/report/table_report.h"
#include "replay/runner/in_process.h"
#include "replay/runner/plugin.h"
#include "replay/terminal_timeline.h"
#include "replay/trace/profile_file.h"
#include "replay/tshark_version.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using PLATFORM::standard_stream;

/// "profile-compared.json" for "profile.json".
fs::path compared_profile(const options& wanted) {
    fs::path name = wanted.profile.stem();
    name += "-compared";
    name += wanted.profile.extension();
    return wanted.profile.parent_path() / name;
}

/// What would be written over a capture: a report or a profile.
void refuse_to_overwrite_captures(const options& wanted) {
    std::vector<fs::path> targets{wanted.output, wanted.profile, wanted.summary, wanted.report};
    if (!wanted.compared.empty()) {
        targets.push_back(compared_profile(wanted));
    }
    for (const auto& sources : {wanted.captures, wanted.compared}) {
        for (const auto& source : sources) {
            refuse_to_overwrite(source, targets);
        }
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
        if (out.columns() >= terminal_timeline::least_columns) {
            reports.push_back(std::make_unique<terminal_timeline>(out.stream(), out.columns()));
        }
    }
    if (!wanted.summary.empty()) {
        reports.push_back(std::make_unique<summary_file>(wanted.summary, profile));
    }
    return reports;
}

/// The part of a run in a page.
std::unique_ptr<report> page_report_for(page_file& page, const std::vector<fs::path>& captures,
                                        const std::string& tshark, const profile_file& profile) {
    page_heading heading{.version = KIVRA_VERSION, .tshark = tshark, .captures = {}};
    for (const auto& capture : captures) {
        heading.captures.push_back(text_of(capture));
    }
    return std::make_unique<page_report>(page, std::move(heading), profile);
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
    /// Why captures could not be read to their end.
    std::vector<std::string> breaks_;
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
    auto captures = records.content();
    captures.incomplete = breaks_;
    if (PLATFORM::interrupted()) {
        captures.incomplete.emplace_back("interrupted");
    }
    for (const auto& form : reports_) {
        form->end(captures);
    }
    out_.flush();
    print_count();
    return status();
}

void replay_run::catch_up() {
    runner_.finish(add_);
}

/// The next record; nothing at the end of the stream, which is, after an interruption, that of what
/// was read by then.
std::optional<trace_record> replay_run::next_of(capture_stream& records) {
    while (true) {
        try {
            return records.next();
        } catch (const no_records& error) {
            if (PLATFORM::interrupted()) {
                return std::nullopt;
            }
            a_capture_is_empty_ = true;
            complain(error);
        } catch (const capture_error& error) {
            if (PLATFORM::interrupted()) {
                return std::nullopt;
            }
            breaks_.emplace_back(error.what());
            complain(error);
        }
    }
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
    if (!breaks_.empty()) {
        return broken_off;
    }
    return failed_ == 0 && !a_capture_is_empty_ ? all_went_through : some_failed;
}

/// A runner, and what it is, for people.
struct described_runner {
    std::unique_ptr<record_runner> runner;
    std::string description;
};

described_runner runner_for(const options& wanted, const fs::path& profile,
                            const fs::path& directory, const fs::path& tshark) {
    if (wanted.plugin.empty()) {
        return {std::make_unique<in_process>(tshark, profile),
                "one tshark in " + text_of(directory) + " for all records"};
    }
    const auto loaded = std::make_shared<const plugin>(wanted.plugin);
    const auto description = loaded->describe();
    return {std::make_unique<plugin_sink>(loaded, directory, tshark, profile, wanted.session),
            text_of(wanted.plugin) + ' ' + description.version +
                (wanted.session ? ", one tshark in " : ", tshark in ") + text_of(directory)};
}

/// Captures that are one stream, with their profile and what runs them.
class capture_group {
  public:
    /// @param wanted outlives the object
    capture_group(const options& wanted, const fs::path& profile, const fs::path& directory,
                  const fs::path& tshark)
        : wanted_(wanted),
          tshark_(tshark),
          profile_(profile, wanted.temporary_profile),
          runner_(runner_for(wanted, profile, directory, tshark)) {}

    const profile_file& profile() const { return profile_; }

    void open(const std::vector<fs::path>& captures) {
        records_.emplace(captures, tshark_, wanted_.extraction, [this] {
            if (run_) {
                run_->catch_up();
            }
        });
    }

    /// Of what was opened.
    exit_status run(output& out, std::vector<std::unique_ptr<report>> reports) {
        run_.emplace(wanted_, out, std::move(reports), *runner_.runner);
        return run_->run(runner_.description, *records_);
    }

  private:
    const options& wanted_;
    fs::path tshark_;
    profile_file profile_;
    described_runner runner_;
    std::optional<replay_run> run_;
    std::optional<capture_stream> records_;
};

}  // namespace

exit_status replay(const options& wanted) {
    refuse_to_overwrite_captures(wanted);
    const auto [directory, tshark] = find_tshark(wanted);
    capture_group group(wanted, wanted.profile, directory, tshark);
    std::optional<capture_group> compared;
    if (!wanted.compared.empty()) {
        compared.emplace(wanted, compared_profile(wanted), directory, tshark);
    }
    output out(wanted.output);
    // Before a page of a former run is written over.
    group.open(wanted.captures);
    if (compared) {
        compared->open(wanted.compared);
    }
    auto reports = reports_for(wanted, out, group.profile());
    std::vector<std::unique_ptr<report>> reports_beside;
    std::optional<page_file> page;
    if (!wanted.report.empty()) {
        const auto version = tshark_version(tshark);
        page.emplace(wanted.report, run_page());
        reports.push_back(page_report_for(*page, wanted.captures, version, group.profile()));
        if (compared) {
            reports_beside.push_back(
                page_report_for(*page, wanted.compared, version, compared->profile()));
        }
    }
    auto status = group.run(out, std::move(reports));
    if (compared) {
        status = std::max(status, compared->run(out, std::move(reports_beside)));
    }
    if (page) {
        page->finish();
    }
    return status;
}

void print_error(std::string_view message) {
    std::cerr << "kivra-replay: " << printable(message) << '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
