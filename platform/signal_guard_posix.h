/// Keeping a signal that a write may raise from the host. POSIX.
#pragma once

#include <csignal>
#include <ctime>

namespace KIVRA::TSHARK::PLATFORM {

/// While it lives, a signal that this thread raises by a system call is not delivered; then it is
/// taken away. One that was pending before is the host's and stays.
class signal_guard {
  public:
    explicit signal_guard(int signal) {
        sigemptyset(&signal_);
        sigaddset(&signal_, signal);
        pthread_sigmask(SIG_BLOCK, &signal_, &former_mask_);
        sigset_t pending;
        sigpending(&pending);
        was_pending_ = sigismember(&pending, signal) == 1;
    }
    ~signal_guard() {
        if (!was_pending_) {
            constexpr timespec at_once{};
            sigtimedwait(&signal_, nullptr, &at_once);
        }
        pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
    }
    signal_guard(const signal_guard&) = delete;
    signal_guard& operator=(const signal_guard&) = delete;

  private:
    sigset_t signal_{};
    sigset_t former_mask_{};
    bool was_pending_ = false;
};

}  // namespace KIVRA::TSHARK::PLATFORM
