/// The search for the programs of a run that the command line does not name: the plug-in and
/// tshark.
#pragma once

#include <filesystem>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The file of the plug-in in `program_directory`, or else in ../lib/kivra from there.
/// @throws std::runtime_error when both have none
std::filesystem::path find_plugin(const std::filesystem::path& program_directory);

/// The first of the folders with an executable file that has a name of tshark's.
/// @param folders as in PATH: separated by ":", empty ones don't count
/// @throws std::runtime_error when there is none
std::filesystem::path find_tshark_directory(std::string_view folders);

}  // namespace KIVRA::TSHARK::REPLAY
