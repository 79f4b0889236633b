/// The command interpreter of Windows, and the text that makes it run a program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

constexpr const char* default_interpreter = R"(C:\Windows\system32\cmd.exe)";

/// `cmd /c "..."` with a program, its arguments and the redirection of its output, in UTF-8: the
/// interpreter wants the whole command in a further pair of quotes. Program and output stand in
/// quotes, and so does each argument that holds anything but letters, digits and hyphens. Nothing
/// is escaped: blanks are fine, a double quote breaks the line.
/// @throws std::system_error for a path that has no UTF-8 form
std::string cmd_command_line(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments,
                             const std::filesystem::path& output);

/// Hands a command line to the interpreter and waits, without a limit, until it has ended.
/// @param command_line UTF-8
/// @return nothing, or the system's error number when the interpreter could not be started
std::optional<std::uint32_t> run_command_line(const std::string& command_line,
                                              const char* interpreter = default_interpreter);

}  // namespace KIVRA::TSHARK::PLATFORM
