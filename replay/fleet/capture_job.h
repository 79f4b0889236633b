/// One capture of many, in a process of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "replay/fleet/fleet_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// The program that runs a capture.
struct capture_program {
    std::filesystem::path file;
    /// What stands before those that name the capture and its files.
    std::vector<std::string> arguments;
};

struct capture_files {
    std::filesystem::path capture;
    /// What the program writes; what stands there from before is removed.
    std::filesystem::path summary;
    std::filesystem::path profile;
    /// The same; empty for no page.
    std::filesystem::path page;
};

/// The exit status of a program that could not begin, or not write its files, whatever the capture.
constexpr int status_of_obstacle = 3;

/// Runs the program with the capture and waits for it, and ends it when it is to be given up.
/// @param given_up asked several times a second
/// @return the capture's row in a table; nothing when it was given up
/// @throws std::runtime_error when the program can't be started, could not begin, or can't write
///     its files, which says nothing of the capture
std::optional<fleet_row> run_capture(const capture_program& program, const capture_files& files,
                                     const std::function<bool()>& given_up);

/// "folder/lab/modem.pcapng.summary.json" for "lab/modem.pcapng".
std::filesystem::path file_for(const std::filesystem::path& folder, std::filesystem::path name,
                               const char* ending);

}  // namespace KIVRA::TSHARK::REPLAY
