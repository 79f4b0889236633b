/// The command line of kivra-replay.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "replay/input/extraction/extraction_options.h"

namespace KIVRA::TSHARK::REPLAY {

struct options {
    /// The file of the plug-in that runs the records; empty: they are run in this process.
    std::filesystem::path plugin;
    /// Whether the plug-in is to use one tshark for all records.
    bool session = false;
    /// The folder of tshark; empty: found on PATH.
    std::filesystem::path tshark_directory;
    /// The power-profile parameter file to write.
    std::filesystem::path profile;
    /// Whether the profile goes when the run has ended, so that reports do not name it.
    bool temporary_profile = false;
    /// Whether this is the run of a capture that `each` has started.
    bool one_of_many = false;
    /// Where the report goes; empty: the standard output.
    std::filesystem::path output;
    /// Where the summary goes as JSON; empty: nowhere.
    std::filesystem::path summary;
    /// Where the report as a web page goes; empty: nowhere.
    std::filesystem::path report;
    /// Each capture a trace of its own; `summary`, `profile` and `report` are folders then, or
    /// empty for none to be kept.
    bool each = false;
    /// With each: also the folders within folders.
    bool recursive = false;
    /// With each: how many captures at a time; 0 for as many as the machine has cores.
    std::size_t jobs = 0;
    /// With each: where the table goes, a row a capture; empty: nowhere.
    std::filesystem::path table;
    /// With each: the captures are tables of earlier runs, which are joined, and nothing is run.
    bool from_tables = false;
    /// With each: the only capture is a folder, and those that come into it are run, too.
    bool watch = false;
    /// JSON Lines for programs, instead of a table for people.
    bool json = false;
    /// Every record in the table, not only those that tell something new.
    bool all = false;
    /// Nothing for people but errors.
    bool quiet = false;
    /// How tshark reads captures that are not read directly.
    extraction_options extraction;
    /// At least one; "-" at most once, in these and the compared ones together. With each: also
    /// folders, and no "-".
    std::vector<std::filesystem::path> captures;
    /// What the page shows beside these; may be empty.
    std::vector<std::filesystem::path> compared;
};

/// What the command line asks for: a run with these options, or a text (the help or the version)
/// and nothing else.
/// @param arguments in UTF-8, without the program's name
/// @throws std::runtime_error for a command line that is wrong
std::variant<options, std::string> read_command_line(std::vector<std::string> arguments);

}  // namespace KIVRA::TSHARK::REPLAY
