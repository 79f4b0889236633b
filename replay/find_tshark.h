/// The search for tshark where the command line does not name its folder.
#pragma once

#include <filesystem>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// The first of the folders with an executable file that has a name of tshark's; behind them, what
/// the plug-in finds by itself.
/// @param folders as in PATH; empty ones don't count
/// @throws std::runtime_error when there is none
std::filesystem::path find_tshark_directory(std::string_view folders);

}  // namespace KIVRA::TSHARK::REPLAY
