/// What a program of the command line needs of its system: its own place, its standard streams, and
/// the signals that end it. For one program a process; not thread-safe but for `interrupted`.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace KIVRA::TSHARK::PLATFORM {

/// The folder that the running program's file stands in.
/// @throws std::filesystem::filesystem_error when the system does not tell
std::filesystem::path program_directory();

enum class standard_stream { input, output, error };

bool is_terminal(standard_stream stream);

/// Keeps files from being opened as standard streams that the caller has closed. What takes their
/// place can't be used, so that a report that goes nowhere is still an error.
void occupy_closed_standard_streams();

/// Makes writing to a pipe without a reader an error (EPIPE) instead of the process's end.
void ignore_broken_pipes();

/// Ends the process as a broken pipe would have.
void end_by_broken_pipe();

/// From now on the first interruption (SIGINT, Ctrl-C) is noted instead of ending the process, and
/// breaks off a read that waits; the second one ends the process.
void install_interrupt_handler();

/// Whether there was an interruption since the handler was installed.
bool interrupted();

/// Ends the process as the interruption would have, which tells a shell to stop its loop.
void end_by_interrupt();

/// Whether the file is a regular one that this process may execute.
bool is_executable_file(const std::filesystem::path& file);

/// Why this process may not write the existing file, or make one in the existing folder: the
/// system's reason; nothing when it may.
std::optional<std::string> write_obstacle(const std::filesystem::path& file_or_folder);

}  // namespace KIVRA::TSHARK::PLATFORM
