#include "replay/replay.h"

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "platform/platform.h"
#include "replay/batch.h"
#include "replay/capture_stream.h"
#include "replay/interruption.h"
#include "replay/json_lines.h"
#include "replay/learnt.h"
#include "replay/locate.h"
#include "replay/output.h"
#include "replay/plugin.h"
#include "replay/profile_file.h"
#include "replay/progress.h"
#include "replay/summary.h"
#include "replay/table.h"
#include "replay/text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;

fs::path program_directory() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

fs::path tshark_directory(const options& wanted) {
    return wanted.tshark_directory.empty()
               ? find_tshark_directory(PLATFORM::path_variable().value_or(""))
               : wanted.tshark_directory;
}

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

/// The records of a stream on their way through a runner into the report.
class replay_run {
  public:
    replay_run(const options& wanted, const profile_file& profile, output& out)
        : wanted_(wanted), profile_(profile), out_(out), table_(out.stream(), out.takes_colour()) {}

    /// @param heading what runs the records, for people
    exit_status run(const std::string& heading, capture_stream& records, record_runner& runner);

  private:
    bool for_people() const { return !wanted_.json && !wanted_.quiet; }
    std::optional<record> next_of(capture_stream& records);
    void report(const record& packet, const outcome& result);
    void finish();
    exit_status status() const;

    const options& wanted_;
    const profile_file& profile_;
    output& out_;
    table table_;
    summary summary_;
    std::uint64_t number_ = 0;
    bool capture_broke_ = false;
};

exit_status replay_run::run(const std::string& heading, capture_stream& records,
                            record_runner& runner) {
    const bool shows_progress = !wanted_.quiet && isatty(STDERR_FILENO) != 0;
    progress bar(shows_progress ? &std::cerr : nullptr, records.size());
    if (for_people()) {
        out_.stream() << printable(heading) << "\n\n";
        table_.head();
        out_.flush();
    }
    while (!interrupted()) {
        const auto packet = next_of(records);
        if (!packet) {
            break;
        }
        bar.draw(records.position(), ++number_);
        const auto result = runner.run(*packet);
        bar.clear();
        report(*packet, result);
    }
    if (!interrupted()) {
        runner.complete();
    }
    bar.clear();
    finish();
    return status();
}

/// The next record; nothing at the end of the stream, or where an interruption breaks off a read.
std::optional<record> replay_run::next_of(capture_stream& records) {
    while (!interrupted()) {
        try {
            return records.next();
        } catch (const std::runtime_error& error) {
            if (!interrupted()) {
                capture_broke_ = true;
                print_error(error.what());
            }
        }
    }
    return std::nullopt;
}

void replay_run::report(const record& packet, const outcome& result) {
    const auto said = learn_from(result.result);
    summary_.note(number_, packet, result, said);
    if (wanted_.json) {
        out_.stream() << json_line(number_, packet, result);
    } else if (!wanted_.quiet) {
        table_.row(number_, packet, result, said);
    }
    out_.flush();
}

void replay_run::finish() {
    if (for_people()) {
        summary_.print(out_.stream(), profile_);
        out_.flush();
    }
    if (!wanted_.quiet && isatty(STDERR_FILENO) == 0) {
        std::cerr << counted(summary_.records(), "record") << ", " << summary_.failed()
                  << " failed\n";
    }
}

exit_status replay_run::status() const {
    if (interrupted()) {
        return interrupted_run;
    }
    if (capture_broke_) {
        return broken_off;
    }
    return summary_.failed() == 0 ? all_went_through : some_failed;
}

exit_status replay_through_plugin(const options& wanted) {
    // First of all, so that what can't be read is found before anything is run.
    capture_stream records(wanted.captures);
    const auto plugin_file =
        wanted.plugin.empty() ? find_plugin(program_directory()) : wanted.plugin;
    const plugin loaded(plugin_file);
    const auto description = loaded.describe();
    const profile_file profile(wanted.profile);
    const auto directory = tshark_directory(wanted);
    sink target(loaded, directory, wanted.profile);
    output out(wanted.output);
    return replay_run(wanted, profile, out)
        .run(plugin_file.string() + ' ' + description.version + ", tshark in " + directory.string(),
             records, target);
}

exit_status replay_in_batch(const options& wanted) {
    std::vector<working_file> copies;
    for (const auto& file : wanted.captures) {
        copies.push_back(copy_of_capture(file));
    }
    const batch_capture for_tshark(capture_stream(wanted.captures, copies));
    capture_stream records(wanted.captures, copies);
    const profile_file profile(wanted.profile);
    const auto directory = tshark_directory(wanted);
    batch target(for_tshark, directory, wanted.profile);
    output out(wanted.output);
    return replay_run(wanted, profile, out)
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
