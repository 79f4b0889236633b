/// The command line of kivra-replay.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

struct options {
    /// The plug-in's file; empty: the one that belongs to this program.
    std::filesystem::path plugin;
    /// The folder of tshark; empty: found on PATH.
    std::filesystem::path tshark_directory;
    /// The power-profile parameter file to write.
    std::filesystem::path profile;
    /// At least one.
    std::vector<std::filesystem::path> captures;
};

/// What the command line asks for: a run with these options, or a text (the help or the version)
/// and nothing else.
/// @throws std::runtime_error for a command line that is wrong
std::variant<options, std::string> read_command_line(int count, const char* const* arguments);

}  // namespace KIVRA::TSHARK::REPLAY
