/// The command line that runs tshark on a capture file and redirects its JSON output.
#pragma once

#include <filesystem>
#include <string>

namespace KIVRA::TSHARK::ANALYSIS {

/// UTF-8, written for cmd.exe, which wants the whole command in a further pair of quotes. The paths
/// stand as they are: blanks are fine, a double quote in one breaks the line.
/// @throws std::system_error for a path that has no UTF-8 form
std::string tshark_command(const std::filesystem::path& executable,
                           const std::filesystem::path& capture,
                           const std::filesystem::path& output);

}  // namespace KIVRA::TSHARK::ANALYSIS
