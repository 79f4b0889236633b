/// kivra-replay: the plug-in's work for the command line. It runs the records of captures through
/// the plug-in, or through one tshark by the plug-in's rules, and shows what comes of them.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "replay/interruption.h"
#include "replay/options.h"
#include "replay/output.h"
#include "replay/replay.h"
#include "replay/text.h"

namespace {

using namespace KIVRA::TSHARK::REPLAY;

/// Keeps files from being opened as standard streams that the caller has closed. What takes their
/// place can't be used, so that a report that goes nowhere is still an error.
void occupy_standard_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) {
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

int run_command_line(int count, const char* const* arguments) {
    const auto wanted = read_command_line(count, arguments);
    if (const auto* text = std::get_if<std::string>(&wanted)) {
        output out({});
        out.stream() << *text;
        out.flush();
        return all_went_through;
    }
    note_interruptions();
    return replay(std::get<options>(wanted));
}

}  // namespace

int main(int count, char** arguments) {
    occupy_standard_streams();
    // A reader that goes away is noticed as a failed write, and everything is tidied up first.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        return run_command_line(count, arguments);
    } catch (const reader_gone&) {
        static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
        static_cast<void>(std::raise(SIGPIPE));
    } catch (const std::exception& error) {
        print_error(error.what());
    }
    return broken_off;
}
