#include <csignal>
#include <ctime>
#include <fstream>

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

}  // namespace

void write_file(const std::filesystem::path& file, std::string_view content) {
    const file_size_signal_guard guard;
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
}

}  // namespace KIVRA::TSHARK::PLATFORM
