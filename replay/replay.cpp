#include "replay/replay.h"

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/program.h"
#include "replay/find_programs.h"
#include "replay/input/capture_stream.h"
#include "replay/output.h"
#include "replay/progress.h"
#include "replay/report/formatting.h"
#include "replay/report/json_lines.h"
#include "replay/report/profile_file.h"
#include "replay/report/table_report.h"
#include "replay/runner/batch_source.h"
#include "replay/runner/in_process.h"
#include "replay/runner/plugin.h"
#include "sink/tshark_discovery.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using PLATFORM::standard_stream;

/// What would be written over a capture: the report or the profile.
void refuse_to_overwrite_captures(const options& wanted) {
    for (const auto& source : wanted.captures) {
        for (const auto& target : {wanted.output, wanted.profile}) {
            std::error_code missing;
            if (fs::equivalent(source, target, missing)) {
                throw std::runtime_error(target.string() + " is a capture to read, not to write");
            }
        }
    }
}

fs::path tshark_directory(const options& wanted) {
    return wanted.tshark_directory.empty()
               ? find_tshark_directory(PLATFORM::path_variable().value_or(""))
               : wanted.tshark_directory;
}

std::vector<std::unique_ptr<report>> reports_for(const options& wanted, output& out,
                                                 const profile_file& profile) {
    std::vector<std::unique_ptr<report>> reports;
    if (wanted.json) {
        reports.push_back(std::make_unique<json_lines>(out.stream()));
    } else if (!wanted.quiet) {
        reports.push_back(
            std::make_unique<table_report>(out.stream(), out.takes_colour(), profile));
    }
    return reports;
}

/// The records of a stream on their way through a runner into the reports.
class replay_run {
  public:
    replay_run(const options& wanted, output& out, std::vector<std::unique_ptr<report>> reports)
        : quiet_(wanted.quiet), out_(out), reports_(std::move(reports)) {}

    /// @param heading what runs the records, for people
    exit_status run(const std::string& heading, capture_stream& records, record_runner& runner);

  private:
    std::optional<trace_record> next_of(capture_stream& records);
    void add(const trace_record& record, const outcome& result);
    void print_count() const;
    exit_status status() const;

    bool quiet_;
    output& out_;
    std::vector<std::unique_ptr<report>> reports_;
    std::uint64_t records_ = 0;
    std::uint64_t failed_ = 0;
    bool capture_broke_ = false;
};

exit_status replay_run::run(const std::string& heading, capture_stream& records,
                            record_runner& runner) {
    const bool shows_progress = !quiet_ && PLATFORM::is_terminal(standard_stream::error);
    progress bar(shows_progress ? &std::cerr : nullptr, records.size());
    for (const auto& form : reports_) {
        form->begin(heading);
    }
    out_.flush();
    while (const auto record = next_of(records)) {
        bar.draw(records.position(), ++records_);
        const auto result = runner.run(*record);
        bar.clear();
        add(*record, result);
    }
    if (!PLATFORM::interrupted()) {
        runner.complete();
    }
    bar.clear();
    for (const auto& form : reports_) {
        form->end();
    }
    out_.flush();
    print_count();
    return status();
}

/// The next record; nothing at the end of the stream, or after an interruption.
std::optional<trace_record> replay_run::next_of(capture_stream& records) {
    while (!PLATFORM::interrupted()) {
        try {
            return records.next();
        } catch (const std::runtime_error& error) {
            // An interruption breaks off a read.
            if (!PLATFORM::interrupted()) {
                capture_broke_ = true;
                print_error(error.what());
            }
        }
    }
    return std::nullopt;
}

void replay_run::add(const trace_record& record, const outcome& result) {
    failed_ += result.failure ? 1 : 0;
    for (const auto& form : reports_) {
        form->add(records_, record, result);
    }
    out_.flush();
}

void replay_run::print_count() const {
    if (!quiet_ && !PLATFORM::is_terminal(standard_stream::error)) {
        std::cerr << pluralise(records_, "record") << ", " << failed_ << " failed\n";
    }
}

exit_status replay_run::status() const {
    if (capture_broke_) {
        return broken_off;
    }
    return failed_ == 0 ? all_went_through : some_failed;
}

exit_status replay_through_plugin(const options& wanted) {
    const auto directory = tshark_directory(wanted);
    const auto file =
        wanted.plugin.empty() ? find_plugin(PLATFORM::program_directory()) : wanted.plugin;
    const auto loaded = std::make_shared<const plugin>(file);
    const auto description = loaded->describe();
    const profile_file profile(wanted.profile);
    plugin_sink target(loaded, directory, wanted.profile);
    output out(wanted.output);
    capture_stream records(wanted.captures);
    return replay_run(wanted, out, reports_for(wanted, out, profile))
        .run(file.string() + ' ' + description.version + ", tshark in " + directory.string(),
             records, target);
}

exit_status replay_in_batch(const options& wanted) {
    const auto directory = tshark_directory(wanted);
    const auto tshark = SINK::tshark_executable(directory);
    const profile_file profile(wanted.profile);
    output out(wanted.output);
    std::vector<working_file> copies;
    for (const auto& file : wanted.captures) {
        copies.push_back(copy_of_capture(file));
    }
    capture_stream records(wanted.captures, copies);
    in_process target(
        tshark, wanted.profile,
        std::make_unique<batch_source>(tshark, capture_stream(wanted.captures, copies)));
    return replay_run(wanted, out, reports_for(wanted, out, profile))
        .run("one tshark in " + directory.string() + " for all records", records, target);
}

}  // namespace

exit_status replay(const options& wanted) {
    refuse_to_overwrite_captures(wanted);
    return wanted.batch ? replay_in_batch(wanted) : replay_through_plugin(wanted);
}

void print_error(std::string_view message) {
    std::cerr << "kivra-replay: " << printable(message) << '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
