#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "platform/console/console.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace fs = std::filesystem;

namespace {

volatile std::sig_atomic_t interruption = 0;

/// @param signal the last one counts
void note_interruption(int signal) {
    interruption = signal;
}

void handle(int signal, int flags) {
    struct sigaction action {};
    action.sa_handler = note_interruption;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

void end_by(int signal) {
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(std::raise(signal));
}

int descriptor_of(standard_stream stream) {
    switch (stream) {
        case standard_stream::input:
            return STDIN_FILENO;
        case standard_stream::output:
            return STDOUT_FILENO;
        case standard_stream::error:
            return STDERR_FILENO;
    }
    return -1;
}

}  // namespace

bool is_terminal(standard_stream stream) {
    return isatty(descriptor_of(stream)) != 0;
}

std::size_t output_columns() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::vector<std::string> utf8_arguments(int count, char** arguments) {
    return {arguments + std::min(count, 1), arguments + count};
}

fs::path program_file() {
    return fs::read_symlink("/proc/self/exe");
}

void prepare_standard_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) {
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

bool tells_of_missing_reader(int error) {
    return error == EPIPE;
}

void end_by_broken_pipe() {
    end_by(SIGPIPE);
}

void install_interrupt_handler() {
    handle(SIGINT, static_cast<int>(SA_RESETHAND));
}

void note_all_interruptions() {
    handle(SIGINT, 0);
    handle(SIGTERM, 0);
}

bool interrupted() {
    return interruption != 0;
}

void end_by_interrupt() {
    end_by(interruption);
}

bool is_executable_file(const fs::path& file) {
    std::error_code unreachable;
    return fs::is_regular_file(file, unreachable) && access(file.c_str(), X_OK) == 0;
}

std::optional<std::int64_t> write_time(const fs::path& file) {
    std::error_code missing;
    const auto time = fs::last_write_time(file, missing);
    return missing ? std::nullopt : std::optional(time.time_since_epoch().count());
}

std::optional<std::string> write_obstacle(const fs::path& file_or_folder) {
    std::error_code missing;
    const int mode = fs::is_directory(file_or_folder, missing) ? W_OK | X_OK : W_OK;
    if (access(file_or_folder.c_str(), mode) == 0) {
        return std::nullopt;
    }
    return std::generic_category().message(errno);
}

}  // namespace KIVRA::TSHARK::PLATFORM
