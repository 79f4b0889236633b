#include "platform/spawn_posix.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

namespace KIVRA::TSHARK::PLATFORM {

namespace {

/// What the child starts with: the standard streams and no other descriptor.
class child_descriptors {
  public:
    child_descriptors(const child_stream& input, const child_stream& output,
                      const child_stream& errors) {
        note(posix_spawn_file_actions_init(&actions_));
        set(STDOUT_FILENO, output, O_WRONLY | O_CREAT | O_TRUNC);
        set(STDIN_FILENO, input, O_RDONLY);
        set(STDERR_FILENO, errors, O_WRONLY);
        note(posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
    }
    ~child_descriptors() { posix_spawn_file_actions_destroy(&actions_); }
    child_descriptors(const child_descriptors&) = delete;
    child_descriptors& operator=(const child_descriptors&) = delete;

    /// The first error number met, or 0.
    int error() const { return error_; }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    void set(int number, const child_stream& stream, int flags) {
        constexpr mode_t anybody = 0666;
        if (const auto* file = std::get_if<std::filesystem::path>(&stream)) {
            note(
                posix_spawn_file_actions_addopen(&actions_, number, file->c_str(), flags, anybody));
        } else {
            note(posix_spawn_file_actions_adddup2(&actions_, std::get<int>(stream), number));
        }
    }

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

/// The arguments as the system takes them, the program's name first. They refer to the texts.
std::vector<char*> argument_vector(std::string& program, std::vector<std::string>& arguments) {
    std::vector<char*> pointers{program.data()};
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

spawned spawn(const std::filesystem::path& program, const std::vector<std::string>& arguments,
              const child_stream& input, const child_stream& output, const child_stream& errors) {
    const child_descriptors descriptors(input, output, errors);
    const child_signals signals;
    std::string name = program.native();
    std::vector<std::string> texts = arguments;
    spawned result{.error = descriptors.error()};
    if (result.error == 0) {
        result.error = posix_spawn(&result.child, name.c_str(), descriptors.get(), signals.get(),
                                   argument_vector(name, texts).data(), environ);
    }
    return result;
}

}  // namespace KIVRA::TSHARK::PLATFORM
