#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <utility>

#include "platform/piped_process.h"
#include "platform/signal_guard_posix.h"
#include "platform/spawn_posix.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

constexpr std::size_t most_error_text = 65'536;

int checked(int result) {
    if (result == -1) {
        throw process_not_started(static_cast<std::uint32_t>(errno));
    }
    return result;
}

class descriptor {
  public:
    explicit descriptor(int number) : number_(number) {}
    ~descriptor() { close(); }
    descriptor(descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;
    descriptor& operator=(descriptor&&) = delete;

    int number() const { return number_; }
    bool is_open() const { return number_ != -1; }

    void close() {
        if (is_open()) {
            ::close(std::exchange(number_, -1));
        }
    }

  private:
    int number_;
};

/// The same, but not in the place of a standard stream, which a host may have closed.
descriptor above_standard_streams(descriptor low) {
    if (low.number() > STDERR_FILENO) {
        return low;
    }
    return descriptor(checked(fcntl(low.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1)));
}

struct pipe_ends {
    descriptor reading;
    descriptor writing;
};

pipe_ends make_pipe() {
    std::array<int, 2> numbers{};
    checked(pipe2(numbers.data(), O_CLOEXEC));
    descriptor reading(numbers[0]);
    descriptor writing(numbers[1]);
    return {above_standard_streams(std::move(reading)), above_standard_streams(std::move(writing))};
}

struct pipe_pair {
    pipe_ends to_child = make_pipe();
    pipe_ends from_child = make_pipe();
};

void do_not_block(const descriptor& end) {
    checked(fcntl(end.number(), F_SETFL, O_NONBLOCK));
}

/// Where a child may print its errors to; nothing for one whose errors are dropped.
std::optional<descriptor> make_error_file(error_text errors) {
    if (errors == error_text::dropped) {
        return std::nullopt;
    }
    return above_standard_streams(descriptor(checked(memfd_create("errors", MFD_CLOEXEC))));
}

child_stream stream_of(const std::optional<descriptor>& file) {
    return file ? child_stream(file->number()) : child_stream(std::filesystem::path("/dev/null"));
}

/// @return what waitpid does, whatever signals come
pid_t collect(pid_t child, int* status, int flags) {
    pid_t collected = 0;
    do {
        collected = waitpid(child, status, flags);
    } while (collected == -1 && errno == EINTR);
    return collected;
}

}  // namespace

struct piped_process::connection {
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               error_text wanted_errors)
        : connection(program, arguments, wanted_errors, pipe_pair()) {}

    ~connection() {
        input.close();
        output.close();
        // Once it is collected, its number may be somebody else's.
        if (getpid() == parent && !exit_status && collect(child, nullptr, WNOHANG) == 0) {
            // With all that it has started itself, if it is a script around the real program.
            kill(-child, SIGKILL);
            kill(child, SIGKILL);
            collect(child, nullptr, 0);
        }
    }
    connection(const connection&) = delete;
    connection& operator=(const connection&) = delete;

    std::size_t write(std::string_view text) {
        if (text.empty() || !input.is_open()) {
            return text.size();
        }
        const signal_guard guard(SIGPIPE);
        const ssize_t count = ::write(input.number(), text.data(), text.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno == EAGAIN || errno == EINTR) {
            return 0;
        }
        input.close();
        return text.size();
    }

    std::size_t read(std::span<char> room) {
        if (room.empty()) {
            return 0;
        }
        const ssize_t count = ::read(output.number(), room.data(), room.size());
        if (count > 0) {
            return static_cast<std::size_t>(count);
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            ended = true;
        }
        return 0;
    }

    /// Waits until a write or a read may go on, or what else is wanted.
    /// @param milliseconds -1 for as long as it takes
    void wait(const occasion& wanted, int milliseconds) const {
        // poll overlooks negative descriptors.
        std::array<pollfd, 3> ends{
            {{wanted.input ? input.number() : -1, POLLOUT, 0},
             {wanted.output ? output.number() : -1, POLLIN, 0},
             {wanted.other ? static_cast<int>(*wanted.other) : -1, POLLIN, 0}}};
        poll(ends.data(), ends.size(), milliseconds);
    }

    descriptor input;
    descriptor output;
    std::optional<descriptor> errors;
    std::optional<int> exit_status;
    pid_t child = 0;
    pid_t parent = getpid();
    bool ended = false;

  private:
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               error_text wanted_errors, pipe_pair pipes)
        : input(std::move(pipes.to_child.writing)),
          output(std::move(pipes.from_child.reading)),
          errors(make_error_file(wanted_errors)) {
        do_not_block(input);
        do_not_block(output);
        const auto [started, error] = spawn(program, arguments, pipes.to_child.reading.number(),
                                            pipes.from_child.writing.number(), stream_of(errors));
        if (error != 0) {
            throw process_not_started(static_cast<std::uint32_t>(error));
        }
        child = started;
    }
};

piped_process::piped_process(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments, error_text errors)
    : connection_(std::make_unique<connection>(program, arguments, errors)) {}

piped_process::~piped_process() = default;

piped_process::transfer piped_process::exchange(std::string_view input, std::span<char> output,
                                                bool wait) {
    if (getpid() != connection_->parent) {
        connection_->ended = true;
    }
    transfer moved;
    while (!connection_->ended) {
        moved.written = connection_->write(input);
        moved.read = connection_->read(output);
        const bool idle = moved.written == 0 && moved.read == 0 && !connection_->ended;
        if (!idle || !wait || (input.empty() && output.empty())) {
            break;
        }
        connection_->wait({.input = !input.empty(), .output = !output.empty()}, -1);
    }
    moved.ended = connection_->ended;
    return moved;
}

void piped_process::wait(const occasion& wanted, std::chrono::milliseconds at_most) const {
    connection_->wait(wanted, static_cast<int>(at_most.count()));
}

int piped_process::exit_status() {
    auto& known = connection_->exit_status;
    if (!known) {
        int status = 0;
        collect(connection_->child, &status, 0);
        constexpr int of_signals = 128;
        known = WIFSIGNALED(status) ? of_signals + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return *known;
}

std::string piped_process::printed_errors() const {
    if (!connection_->errors) {
        return {};
    }
    std::string text(most_error_text, '\0');
    const ssize_t size = pread(connection_->errors->number(), text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return text;
}

void piped_process::close_input() {
    connection_->input.close();
}

}  // namespace KIVRA::TSHARK::PLATFORM
