/// Running a program in tests and keeping what it prints. POSIX.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::TESTING {

/// Where the input of a program comes from, and its output goes.
struct process_setting {
    /// The file of standard input.
    std::filesystem::path input = "/dev/null";
    /// The file of standard output; empty: what is printed is kept.
    std::filesystem::path output = {};
    /// Standard output is a pipe that nobody reads.
    bool output_has_no_reader = false;
    bool output_is_terminal = false;
    bool error_is_terminal = false;
    /// Of a terminal; 0 where it says nothing of its size.
    unsigned short terminal_columns = 0;
};

struct process_result {
    /// The exit status; the negative number of the signal when one ended the program.
    int status = 0;
    std::string output;
    std::string error;
};

/// Runs a program in the working directory and waits for its end.
/// @param command the program's path and its arguments
/// @throws std::system_error when it can't be started
process_result run_process(const std::vector<std::string>& command,
                           const process_setting& setting = {});

}  // namespace KIVRA::TSHARK::TESTING
