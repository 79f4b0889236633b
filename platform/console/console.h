/// What a program of the command line needs of its system: its standard streams, and
/// the signals that end it. For one program a process; not thread-safe but for `interrupted`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

enum class standard_stream { input, output, error };

/// The command line's arguments in UTF-8, without the program's name.
/// @param count, arguments those of main()
std::vector<std::string> utf8_arguments(int count, char** arguments);

/// The file of this program.
/// @throws std::filesystem::filesystem_error, or std::system_error on Windows, when the system does
///     not tell
std::filesystem::path program_file();

/// Makes the standard streams fit for a report: a stream that the caller has closed can't be taken
/// by a file, so that a report that goes nowhere is still an error; writing to a pipe without a
/// reader is an error instead of the process's end; on Windows, texts go out byte by byte, and a
/// console takes them as UTF-8 until the process ends.
void prepare_standard_streams();

/// Whether the stream is a terminal that does what control sequences say.
bool is_terminal(standard_stream stream);

/// How many characters fit on a line of the terminal that the standard output goes to; 0 where it
/// goes elsewhere, or nothing is known of the terminal.
std::size_t output_columns();

/// Whether a failed write to the standard output, which has left this in errno, means that nobody
/// reads it any more.
bool tells_of_missing_reader(int error);

/// Ends the process as a broken pipe would have; returns where that is unknown.
void end_by_broken_pipe();

/// From now on the first interruption (SIGINT, Ctrl-C) is noted instead of ending the process, and
/// breaks off a read that waits; the second one ends the process.
void install_interrupt_handler();

/// From now on all interruptions are noted, and none ends the process by itself: for a program that
/// has something to tidy up, and asks often whether there was one. On POSIX, SIGTERM is one, too.
void note_all_interruptions();

/// Whether there was an interruption since the handler was installed.
bool interrupted();

/// Ends the process as the interruption would have, which tells a shell to stop its loop.
void end_by_interrupt();

/// Whether the file is a regular one that this process may execute.
bool is_executable_file(const std::filesystem::path& file);

/// When the file was last written, in the system's own smallest unit: to be compared, not read.
/// Nothing when there is no such file.
std::optional<std::int64_t> write_time(const std::filesystem::path& file);

/// Why this process may not write the existing file, or make one in the existing folder: the
/// system's reason; nothing when it may.
std::optional<std::string> write_obstacle(const std::filesystem::path& file_or_folder);

}  // namespace KIVRA::TSHARK::PLATFORM
