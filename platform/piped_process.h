/// A program that runs while it is fed through a pipe and read through another. It belongs to the
/// object that started it, which one thread at a time may use. No thread is created.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

/// A program could not be started.
class process_not_started : public std::runtime_error {
  public:
    explicit process_not_started(std::uint32_t error)
        : std::runtime_error(std::to_string(error)), error_(error) {}

    /// The system's error number: errno, or that of GetLastError.
    std::uint32_t error() const { return error_; }

  private:
    std::uint32_t error_;
};

/// What becomes of the text that a program prints to its standard error.
enum class error_text { dropped, kept };

/// Something to wait for: a descriptor that can be read on POSIX, a handle that is signalled on
/// Windows.
using waitable = std::intptr_t;

class piped_process {
  public:
    /// Starts the program directly, without a shell and without a search along PATH. It gets the
    /// host's environment and current directory, its two pipes, an unnamed file or nothing for its
    /// standard error, and no other handle; as to signals and Ctrl-C it is in the position of
    /// `run_program`'s.
    /// @param arguments UTF-8 on Windows, bytes as they stand on POSIX
    /// @throws process_not_started; std::system_error on Windows for an argument that is not UTF-8
    piped_process(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                  error_text errors = error_text::dropped);

    /// Ends the program if it still runs, at once, and waits for that; on POSIX its process group
    /// with it. What it has printed and nobody has read is lost.
    ~piped_process();
    piped_process(const piped_process&) = delete;
    piped_process& operator=(const piped_process&) = delete;

    struct transfer {
        /// Bytes of the input that are on their way.
        std::size_t written = 0;
        /// Bytes of the output that have come.
        std::size_t read = 0;
        /// The output has ended, and with it, for all that can be known, the program; on Windows
        /// also a program that has left its output to another. Nothing moves any more.
        bool ended = false;
    };

    /// Takes of the input what there is room for on its way to the program, and gives what it has
    /// printed, each without waiting for the other. Input for a program that has closed its own
    /// counts as written and is lost; the end of the output tells of a program that is gone.
    ///
    /// POSIX: in a process that the host has forked off since, the program has ended.
    /// @param input may be empty: then there is only reading
    /// @param output room for what has come; if empty, there is only writing, the end of the output
    ///     is not noticed, and a program that waits for its output to be read takes no more input
    /// @param wait does not return before something has moved or the output has ended, unless
    ///     there is nothing to move: both input and room are empty
    transfer exchange(std::string_view input, std::span<char> output, bool wait);

    struct occasion {
        /// There is room for input.
        bool input = false;
        /// Output has come, or has ended.
        bool output = true;
        /// Something else that is ready, if any.
        std::optional<waitable> other = std::nullopt;
    };

    /// Waits for an occasion to go on, after an exchange that moved nothing. Returns early when a
    /// signal comes.
    void wait(const occasion& wanted, std::chrono::milliseconds at_most) const;

    /// There is no more input: the program sees its end behind what was written. Later input is
    /// lost.
    void close_input();

    /// Waits for the program to end, whose output has ended.
    /// @return its exit status; 128 and the signal's number when a signal ended it, on POSIX
    int exit_status();

    /// What the program has printed to its standard error so far, up to 64 KiB; empty unless it is
    /// kept.
    std::string printed_errors() const;

  private:
    struct connection;

    std::unique_ptr<connection> connection_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
