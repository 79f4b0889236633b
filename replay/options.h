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
    /// Where the report goes; empty: the standard output.
    std::filesystem::path output;
    /// One tshark for all records, without the plug-in.
    bool batch = false;
    /// JSON Lines for programs, instead of a table for people.
    bool json = false;
    /// Nothing for people but errors.
    bool quiet = false;
    /// At least one; "-" at most once.
    std::vector<std::filesystem::path> captures;
};

/// What the command line asks for: a run with these options, or a text (the help or the version)
/// and nothing else.
/// @throws std::runtime_error for a command line that is wrong
std::variant<options, std::string> read_command_line(int count, const char* const* arguments);

}  // namespace KIVRA::TSHARK::REPLAY
