#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

/// Keeps SIGXFSZ, which a write beyond the host's limit on the size of files raises and which ends
/// a process that does not handle it, from this thread.
class file_size_signal_guard {
  public:
    file_size_signal_guard() {
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &signal_, &former_mask_);
    }
    ~file_size_signal_guard() {
        // The host's own, if it blocks the signal itself, stays pending.
        if (sigismember(&former_mask_, SIGXFSZ) == 0) {
            constexpr timespec at_once{};
            sigtimedwait(&signal_, nullptr, &at_once);
            pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
        }
    }
    file_size_signal_guard(const file_size_signal_guard&) = delete;
    file_size_signal_guard& operator=(const file_size_signal_guard&) = delete;

  private:
    sigset_t signal_{};
    sigset_t former_mask_{};
};

/// @return how many bytes went in
std::size_t write_all(int descriptor, std::string_view content) {
    std::size_t written = 0;
    while (written < content.size()) {
        const auto rest = content.substr(written);
        const ssize_t count = write(descriptor, rest.data(), rest.size());
        if (count == -1 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        written += static_cast<std::size_t>(count);
    }
    return written;
}

}  // namespace

void write_file(const std::filesystem::path& file, std::string_view content) {
    const file_size_signal_guard guard;
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor == -1) {
        return;
    }
    // Cut afterwards: some file systems (ext4) wait for the disk when a file is truncated first.
    const std::size_t written = write_all(descriptor, content);
    if (ftruncate(descriptor, static_cast<off_t>(written)) == -1) {
        // A pipe or a device has no length.
    }
    close(descriptor);
}

}  // namespace KIVRA::TSHARK::PLATFORM
