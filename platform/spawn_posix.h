/// Starting a child process that gets nothing of the host but what is named here. POSIX.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

/// What a child gets for a standard stream: a file to open or, for the output, to create or
/// overwrite; or a descriptor.
using child_stream = std::variant<std::filesystem::path, int>;

struct spawned {
    pid_t child = 0;
    /// Why there is no child, as posix_spawn tells it; else 0.
    int error = 0;
};

/// Starts a program with the host's environment and current directory and no further descriptor. No
/// signal is blocked, SIGCHLD and SIGPIPE are at their defaults, and the process group is its own.
/// Whoever calls collects the child.
///
/// Files are opened by the child before it becomes the program: the output is made even when there
/// is no such program, and there is no start without it.
/// @param arguments bytes as they stand, without the program's name
/// @param input, output, errors descriptors must be above 2
spawned spawn(const std::filesystem::path& program, const std::vector<std::string>& arguments,
              const child_stream& input, const child_stream& output,
              const child_stream& errors = std::filesystem::path("/dev/null"));

}  // namespace KIVRA::TSHARK::PLATFORM
