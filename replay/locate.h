/// Where a run finds what it needs but was not told: the plug-in and tshark.
#pragma once

#include <filesystem>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The kivra-tshark-sink.so in `program_directory`, or else in ../lib/kivra from there.
/// @throws std::runtime_error when both have none
std::filesystem::path find_plugin(const std::filesystem::path& program_directory);

/// The first of the folders with an executable file that has a name of tshark's.
/// @param folders as in PATH: separated by ":", empty ones don't count
/// @throws std::runtime_error when there is none
std::filesystem::path find_tshark_directory(std::string_view folders);

}  // namespace KIVRA::TSHARK::REPLAY
