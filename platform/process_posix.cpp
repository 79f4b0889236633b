#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

const char* const default_interpreter = "/bin/sh";

namespace {

/// What the child starts with: /dev/null for the standard streams and no other descriptor.
class child_descriptors {
  public:
    child_descriptors() {
        note(posix_spawn_file_actions_init(&actions_));
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            const int access = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
            note(posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", access, 0));
        }
        note(posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
    }
    ~child_descriptors() { posix_spawn_file_actions_destroy(&actions_); }
    child_descriptors(const child_descriptors&) = delete;
    child_descriptors& operator=(const child_descriptors&) = delete;

    /// The first error number met, or 0.
    int error() const { return error_; }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    void note(int error) {
        if (error_ == 0) {
            error_ = error;
        }
    }

    posix_spawn_file_actions_t actions_{};
    int error_ = 0;
};

/// No signal blocked, and those that hosts tend to ignore back at their defaults: an ignored
/// SIGCHLD or SIGPIPE would otherwise reach tshark. A process group of its own: what the terminal
/// sends to the host's, as on Ctrl-C, is for the host to act on.
class child_signals {
  public:
    child_signals() {
        posix_spawnattr_init(&attributes_);
        sigset_t set;
        sigemptyset(&set);
        posix_spawnattr_setsigmask(&attributes_, &set);
        sigaddset(&set, SIGCHLD);
        sigaddset(&set, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &set);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~child_signals() { posix_spawnattr_destroy(&attributes_); }
    child_signals(const child_signals&) = delete;
    child_signals& operator=(const child_signals&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

/// What stands between the outer quotes of `cmd /c "..."`, escaped for sh.
std::string shell_script(std::string_view command_line) {
    const auto first = command_line.find('"') + 1;
    const auto last = command_line.rfind('"');
    std::string script;
    for (const char c : command_line.substr(first, last - first)) {
        if (c == '$' || c == '`' || c == '\\') {
            script += '\\';
        }
        script += c;
    }
    return script;
}

void wait_for(pid_t child) {
    // ECHILD means that the child has ended all the same: somebody else, or the system where the
    // host ignores SIGCHLD, has collected it.
    while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
}

}  // namespace

std::optional<std::uint32_t> run_command_line(const std::string& command_line,
                                              const char* interpreter) {
    const child_descriptors descriptors;
    const child_signals signals;
    std::string name = interpreter;
    std::string option = "-c";
    std::string script = shell_script(command_line);
    const std::array<char*, 4> arguments{name.data(), option.data(), script.data(), nullptr};

    pid_t child = 0;
    int error = descriptors.error();
    if (error == 0) {
        error = posix_spawn(&child, interpreter, descriptors.get(), signals.get(), arguments.data(),
                            environ);
    }
    if (error != 0) {
        return static_cast<std::uint32_t>(error);
    }
    wait_for(child);
    return std::nullopt;
}

}  // namespace KIVRA::TSHARK::PLATFORM
