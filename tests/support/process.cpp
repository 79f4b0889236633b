#include "tests/support/process.h"

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>

namespace KIVRA::TSHARK::TESTING {

namespace {

void check(bool success, const char* operation) {
    if (!success) {
        throw std::system_error(errno, std::generic_category(), operation);
    }
}

class descriptor {
  public:
    explicit descriptor(int number) : number_(number) {}
    ~descriptor() { close(); }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;

    int number() const { return number_; }
    void close() {
        if (number_ != -1) {
            ::close(number_);
        }
        number_ = -1;
    }

  private:
    int number_;
};

/// A stream of the program: `child` is the program's end, `parent` the one that is read.
struct stream {
    descriptor parent;
    descriptor child;
};

stream open_pipe() {
    std::array<int, 2> ends{};
    check(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
    return {descriptor(ends[0]), descriptor(ends[1])};
}

stream open_terminal(unsigned short columns) {
    int parent = -1;
    int child = -1;
    const winsize size{.ws_row = 0, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    check(openpty(&parent, &child, nullptr, nullptr, &size) == 0, "openpty");
    check(fcntl(parent, F_SETFD, FD_CLOEXEC) == 0, "fcntl");
    check(fcntl(child, F_SETFD, FD_CLOEXEC) == 0, "fcntl");
    return {descriptor(parent), descriptor(child)};
}

stream open_file(const std::filesystem::path& file) {
    const int child = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    check(child != -1, "open");
    return {descriptor(-1), descriptor(child)};
}

stream open_output(const process_setting& setting) {
    if (setting.output_is_terminal) {
        return open_terminal(setting.terminal_columns);
    }
    return setting.output.empty() ? open_pipe() : open_file(setting.output);
}

/// Reads to the end of a pipe, or until the last program has left a terminal.
void read_all(int source, std::string& text) {
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto count = read(source, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return;
        }
    }
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t start(std::vector<std::string> arguments, const std::filesystem::path& input, int output,
            int error) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error, STDERR_FILENO);
    pid_t child = 0;
    errno = posix_spawn(&child, arguments.front().c_str(), &actions, nullptr,
                        pointers_to(arguments).data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    check(errno == 0, "posix_spawn");
    return child;
}

int wait_for(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

process_result run_process(const std::vector<std::string>& command,
                           const process_setting& setting) {
    stream output = open_output(setting);
    stream error =
        setting.error_is_terminal ? open_terminal(setting.terminal_columns) : open_pipe();
    if (setting.output_has_no_reader) {
        output.parent.close();
    }

    const pid_t child = start(command, setting.input, output.child.number(), error.child.number());
    output.child.close();
    error.child.close();
    process_result result;
    std::thread error_reader([&] { read_all(error.parent.number(), result.error); });
    read_all(output.parent.number(), result.output);
    error_reader.join();
    result.status = wait_for(child);
    return result;
}

}  // namespace KIVRA::TSHARK::TESTING
