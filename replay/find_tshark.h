/// The search for tshark.
#pragma once

#include <filesystem>
#include <string_view>

#include "replay/options.h"

namespace KIVRA::TSHARK::REPLAY {

/// The first of the folders with an executable file that has a name of tshark's; behind them, what
/// the plug-in finds by itself.
/// @param folders as in PATH; empty ones don't count
/// @throws std::runtime_error when there is none
std::filesystem::path find_tshark_directory(std::string_view folders);

struct found_tshark {
    std::filesystem::path directory;
    std::filesystem::path executable;
};

/// tshark in the folder that the command line names, else in the first of PATH that has it. A
/// plug-in that is told of a folder without one says so itself: then the executable is missing.
/// @throws std::runtime_error when there is none
found_tshark find_tshark(const options& wanted);

}  // namespace KIVRA::TSHARK::REPLAY
