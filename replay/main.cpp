/// kivra-replay: a host of the plug-in for the command line. It runs the records of captures
/// through the plug-in and shows what comes back.
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/platform.h"
#include "replay/capture.h"
#include "replay/locate.h"
#include "replay/options.h"
#include "replay/plugin.h"
#include "replay/profile_file.h"
#include "replay/progress.h"
#include "replay/report.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

enum exit_status { all_went_through = 0, some_failed = 1, broken_off = 2 };

void print_error(std::string_view message) {
    std::cerr << "kivra-replay: " << printable(message) << '\n';
}

std::filesystem::path program_directory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::uint64_t total_size(const std::vector<capture>& captures) {
    std::uint64_t total = 0;
    for (const auto& source : captures) {
        total += source.size();
    }
    return total;
}

/// The records of all captures on their way through the sink into the report.
class replay_run {
  public:
    replay_run(sink& target, report& shown, progress& bar)
        : sink_(target), report_(shown), progress_(bar) {}

    void run(capture& source);

    std::uint64_t records() const { return records_; }
    std::uint64_t failed() const { return failed_; }
    exit_status status() const;

  private:
    std::optional<record> next_of(capture& source);

    sink& sink_;
    report& report_;
    progress& progress_;
    std::uint64_t bytes_of_former_captures_ = 0;
    std::uint64_t records_ = 0;
    std::uint64_t failed_ = 0;
    bool capture_broke_ = false;
};

void replay_run::run(capture& source) {
    progress_.clear();
    report_.start_of(source);
    for (std::uint64_t number = 1; const auto packet = next_of(source); ++number) {
        ++records_;
        progress_.draw(bytes_of_former_captures_ + source.position(), records_);
        const outcome result = sink_.run(*packet);
        if (result.failure) {
            ++failed_;
        }
        progress_.clear();
        report_.result(number, *packet, result);
    }
    bytes_of_former_captures_ += source.size();
}

/// The next record; nothing at the end of the capture or where it breaks.
std::optional<record> replay_run::next_of(capture& source) {
    try {
        return source.next();
    } catch (const std::runtime_error& error) {
        capture_broke_ = true;
        print_error(error.what());
        return std::nullopt;
    }
}

exit_status replay_run::status() const {
    if (capture_broke_) {
        return broken_off;
    }
    return failed_ == 0 ? all_went_through : some_failed;
}

exit_status replay_captures(const options& wanted) {
    // First of all, so that what can't be read is found before anything is run.
    std::vector<capture> captures(wanted.captures.begin(), wanted.captures.end());
    const auto plugin_file =
        wanted.plugin.empty() ? find_plugin(program_directory()) : wanted.plugin;
    const auto tshark_directory =
        wanted.tshark_directory.empty()
            ? find_tshark_directory(PLATFORM::path_variable().value_or(""))
            : wanted.tshark_directory;
    const plugin loaded(plugin_file);
    const auto description = loaded.describe();
    const profile_file profile(wanted.profile);
    sink target(loaded, tshark_directory, wanted.profile);

    const bool on_terminal = isatty(STDERR_FILENO) != 0;
    report shown(std::cout);
    progress bar(on_terminal ? &std::cerr : nullptr, total_size(captures));
    replay_run run(target, shown, bar);
    shown.start(plugin_file, description.version, tshark_directory);
    for (auto& source : captures) {
        run.run(source);
    }
    target.complete();
    shown.profile(profile);
    if (!on_terminal) {
        std::cerr << run.records() << (run.records() == 1 ? " record, " : " records, ")
                  << run.failed() << " failed\n";
    }
    return run.status();
}

exit_status run_command_line(int count, const char* const* arguments) {
    const auto wanted = read_command_line(count, arguments);
    if (const auto* text = std::get_if<std::string>(&wanted)) {
        std::cout << *text;
        return all_went_through;
    }
    return replay_captures(std::get<options>(wanted));
}

}  // namespace

}  // namespace KIVRA::TSHARK::REPLAY

int main(int count, char** arguments) {
    using namespace KIVRA::TSHARK::REPLAY;
    // A reader that goes away is noticed as a failed write: the plug-in's files get removed then.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        return run_command_line(count, arguments);
    } catch (const std::exception& error) {
        print_error(error.what());
        return broken_off;
    }
}
