#include <sys/wait.h>

#include <cerrno>

#include "platform/platform.h"
#include "platform/spawn_posix.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

void wait_for(pid_t child) {
    // ECHILD means that the child has ended all the same: somebody else, or the system where the
    // host ignores SIGCHLD, has collected it.
    while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
}

/// Whether there could be no process whatever its program and output. All other errors are theirs,
/// and what is missing from the output tells of them.
bool is_lack_of_a_process(int error) {
    return error == EAGAIN || error == ENOMEM || error == E2BIG;
}

}  // namespace

std::optional<std::uint32_t> run_program(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments,
                                         const std::filesystem::path& output) {
    const auto [child, error] = spawn(program, arguments, "/dev/null", output);
    if (error == 0) {
        wait_for(child);
    } else if (is_lack_of_a_process(error)) {
        return static_cast<std::uint32_t>(error);
    }
    return std::nullopt;
}

}  // namespace KIVRA::TSHARK::PLATFORM
