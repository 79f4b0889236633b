/// kivra-replay: runs the records of captures through the plug-in, or through one tshark by the
/// plug-in's rules, and reports what comes of them.
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/console/console.h"
#include "replay/each_capture.h"
#include "replay/fleet/capture_job.h"
#include "replay/join_tables.h"
#include "replay/options.h"
#include "replay/output.h"
#include "replay/record/capture_error.h"
#include "replay/replay.h"
#include "replay/watch_folder.h"

namespace {

using namespace KIVRA::TSHARK;
using namespace REPLAY;

/// Tells what is not the capture's fault by a status of its own.
int run_one_of_many(const options& wanted) {
    try {
        return replay(wanted);
    } catch (const capture_error&) {
        throw;
    } catch (const std::runtime_error& error) {
        print_error(error.what());
    }
    return status_of_obstacle;
}

int run_command_line(std::vector<std::string> arguments) {
    const auto wanted = read_command_line(std::move(arguments));
    if (const auto* text = std::get_if<std::string>(&wanted)) {
        output out({});
        out.stream() << *text;
        out.flush();
        return all_went_through;
    }
    PLATFORM::install_interrupt_handler();
    const auto& run = std::get<options>(wanted);
    if (run.from_tables) {
        return join_tables(run);
    }
    if (run.watch) {
        return watch_folder(run);
    }
    if (run.one_of_many) {
        return run_one_of_many(run);
    }
    return run.each ? replay_each(run) : replay(run);
}

}  // namespace

int main(int count, char** arguments) {
    // A reader that goes away is noticed as a failed write, and everything is tidied up first.
    PLATFORM::prepare_standard_streams();
    try {
        const int status = run_command_line(PLATFORM::utf8_arguments(count, arguments));
        if (PLATFORM::interrupted()) {
            PLATFORM::end_by_interrupt();
        }
        return status;
    } catch (const reader_gone&) {
        PLATFORM::end_by_broken_pipe();
    } catch (const std::exception& error) {
        print_error(error.what());
    }
    return broken_off;
}
