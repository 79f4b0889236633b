/// All that differs between Windows and POSIX: running a program, writing and removing a file, what
/// stands at a path, host texts as paths, the PATH variable, the names of tshark's executable. No
/// state, no ownership; every function may be called from any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

/// Runs a program with its standard output in a file, created or overwritten, and waits, without a
/// limit, until it has ended. It gets the host's environment and current directory, but no handle,
/// and on POSIX neither the signal mask nor an ignored SIGCHLD or SIGPIPE. It stands in a process
/// group of its own (Windows: without a console), which keeps Ctrl-C from it. The exit status is
/// not read.
///
/// POSIX: the program is started directly, with its arguments as they stand; one that is missing or
/// can't be executed leaves an empty file, and where the file can't be made nothing is run.
/// Windows: C:\Windows\system32\cmd.exe runs it (see command_interpreter_windows.h), and what is
/// true of the file there is cmd's doing.
/// @param arguments UTF-8 on Windows, bytes as they stand on POSIX
/// @return nothing, or the system's error number when there could be no process at all (Windows: no
///     command interpreter)
/// @throws std::system_error on Windows for a path that has no UTF-8 form
std::optional<std::uint32_t> run_program(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments,
                                         const std::filesystem::path& output);

/// Creates or overwrites a file. What can't be written is missing from it, without a word; on POSIX
/// a limit on the size of files (RLIMIT_FSIZE) does not end the process either.
void write_file(const std::filesystem::path& file, std::string_view content);

/// Removes the single entry at the path, a folder only when it is empty; no error when there is
/// none. Windows: one that is marked read-only, too.
/// @param error why it, or the query for it, failed
void remove_entry(const std::filesystem::path& path, std::error_code& error);

/// A text from the host as a path. Windows: from the file-system code page (UTF-8 when the locale
/// uses code page 65001, else the ANSI code page, or the OEM one when the process chose it);
/// POSIX: the bytes as they stand.
/// @throws std::system_error when the text is not valid in that code page
std::filesystem::path path_from_narrow(std::string_view text);

/// The inverse, for a host's part.
/// @throws std::system_error when the path has no form in that code page
std::string narrow_from_path(const std::filesystem::path& path);

/// What stands at the path, as std::filesystem::status tells it; links are followed.
/// @param error why the query failed; the type is then `none`, but `not_found` where nothing is
std::filesystem::file_status file_status(const std::filesystem::path& path, std::error_code& error);

/// The PATH variable's value, empty when it is set to nothing; no value when it is not set.
std::optional<std::string> path_variable();

/// What stands between the folders of PATH.
char path_separator();

/// The names that tshark's executable may have in its directory, the preferred one first.
std::span<const std::string_view> tshark_executable_names();

}  // namespace KIVRA::TSHARK::PLATFORM
