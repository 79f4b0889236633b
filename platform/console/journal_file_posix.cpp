#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/console/journal_file.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

void check(bool succeeded) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category());
    }
}

int open_file(const std::filesystem::path& file) {
    constexpr mode_t anybody = 0666;
    const int descriptor =
        open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY | O_CLOEXEC, anybody);
    check(descriptor != -1);
    return descriptor;
}

/// A process that was killed while it started another one leaves the lock to that until it has
/// become its program, which takes a moment. So the lock is asked for again.
bool lock(int descriptor) {
    constexpr int attempts = 100;
    constexpr int milliseconds_between = 20;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
            return true;
        }
        check(errno == EWOULDBLOCK || errno == EINTR);
        poll(nullptr, 0, milliseconds_between);
    }
    return false;
}

}  // namespace

struct journal_file::state {
    explicit state(const std::filesystem::path& file) : descriptor(open_file(file)) {}
    ~state() { close(descriptor); }
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    int descriptor;
};

journal_file::journal_file(const std::filesystem::path& file)
    : state_(std::make_unique<state>(file)) {
    if (!lock(state_->descriptor)) {
        throw file_in_use();
    }
}

journal_file::~journal_file() = default;

void journal_file::cut(std::uint64_t size) {
    check(ftruncate(state_->descriptor, static_cast<off_t>(size)) == 0);
}

void journal_file::append(std::string_view text) {
    // What a write that stops early leaves unsaid.
    errno = ENOSPC;
    check(write(state_->descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
    check(fdatasync(state_->descriptor) == 0);
}

}  // namespace KIVRA::TSHARK::PLATFORM
