#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/piped_process.h"
#include "platform/signal_guard_posix.h"
#include "platform/spawn_posix.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

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

/// @return whether the child runs on and is ours: nobody else may have its number yet
bool is_running(pid_t child) {
    pid_t collected = 0;
    do {
        collected = waitpid(child, nullptr, WNOHANG);
    } while (collected == -1 && errno == EINTR);
    return collected == 0;
}

}  // namespace

struct piped_process::connection {
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments)
        : connection(program, arguments, pipe_pair()) {}

    ~connection() {
        input.close();
        output.close();
        if (getpid() == parent && is_running(child)) {
            // With all that it has started itself, if it is a script around the real program.
            kill(-child, SIGKILL);
            kill(child, SIGKILL);
            while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
            }
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

    /// Waits until a write or a read may go on.
    void wait(bool for_input, bool for_output) const {
        // poll overlooks negative descriptors.
        std::array<pollfd, 2> ends{{{for_input ? input.number() : -1, POLLOUT, 0},
                                    {for_output ? output.number() : -1, POLLIN, 0}}};
        poll(ends.data(), ends.size(), -1);
    }

    descriptor input;
    descriptor output;
    pid_t child = 0;
    pid_t parent = getpid();
    bool ended = false;

  private:
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               pipe_pair pipes)
        : input(std::move(pipes.to_child.writing)), output(std::move(pipes.from_child.reading)) {
        do_not_block(input);
        do_not_block(output);
        const auto [started, error] = spawn(program, arguments, pipes.to_child.reading.number(),
                                            pipes.from_child.writing.number());
        if (error != 0) {
            throw process_not_started(static_cast<std::uint32_t>(error));
        }
        child = started;
    }
};

piped_process::piped_process(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments)
    : connection_(std::make_unique<connection>(program, arguments)) {}

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
        connection_->wait(!input.empty(), !output.empty());
    }
    moved.ended = connection_->ended;
    return moved;
}

void piped_process::close_input() {
    connection_->input.close();
}

}  // namespace KIVRA::TSHARK::PLATFORM
