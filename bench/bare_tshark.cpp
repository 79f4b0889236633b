#include "bench/bare_tshark.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace KIVRA::TSHARK::BENCH {

void run_bare_tshark(const std::filesystem::path& executable, const std::filesystem::path& capture,
                     const std::filesystem::path& output) {
    posix_spawn_file_actions_t streams{};
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_addopen(&streams, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
    posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    std::array<std::string, 7> texts{
        executable.string(), "-Y", "nas-eps||lte_rrc", "-r", capture.string(), "-T", "json"};
    std::array<char*, texts.size() + 1> arguments{};
    std::ranges::transform(texts, arguments.begin(), [](auto& text) { return text.data(); });

    pid_t child = 0;
    const int error =
        posix_spawn(&child, executable.c_str(), &streams, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&streams);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("tshark failed");
    }
}

}  // namespace KIVRA::TSHARK::BENCH
