/// The search for tshark: its installation when the host names none, and the executable in it.
///
/// A folder of PATH is searched for an entry whose name begins with "wireshark", whatever the case,
/// not for tshark itself: an installation is found through the folder that contains it, normally
/// C:\Program Files.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::SINK {

/// The folders to search, in order, as texts of the file-system code page: those of PATH (separated
/// by ";", empty ones vanish, nothing is trimmed), then C:\Program Files.
std::vector<std::string> candidate_directories(const std::string& path_variable);

/// The first entry named wireshark-something in the folders of PATH and in C:\Program Files; empty
/// when PATH has no value. No folder behind the one that holds it is looked at.
/// @throws std::runtime_error when no folder holds such an entry
/// @throws std::filesystem::filesystem_error "status" for a candidate that can't be queried,
///     "directory_iterator::directory_iterator" for one that can't be listed
/// @throws std::system_error for a candidate that is not valid in the file-system code page
std::filesystem::path discover_tshark_directory(const std::optional<std::string>& path_variable);

/// The executable in tshark's directory.
/// @throws std::runtime_error when the directory is empty or holds none
/// @throws std::filesystem::filesystem_error "exists" when that can't be told
std::filesystem::path tshark_executable(const std::filesystem::path& directory);

}  // namespace KIVRA::TSHARK::SINK
