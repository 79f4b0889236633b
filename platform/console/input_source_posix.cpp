#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/console/input_source.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

[[noreturn]] void fail(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

int checked(int result, const char* what) {
    if (result == -1) {
        fail(errno, what);
    }
    return result;
}

int open_source(const std::filesystem::path& file) {
    return file.empty() ? checked(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1), "dup")
                        : checked(open(file.c_str(), O_RDONLY | O_CLOEXEC), "open");
}

}  // namespace

struct input_source::state {
    explicit state(int opened) : descriptor(opened) {
        checked(fstat(descriptor, &status), "stat");
        if (S_ISDIR(status.st_mode)) {
            close(descriptor);
            fail(EISDIR, "open");
        }
        start = lseek(descriptor, 0, SEEK_CUR);
    }
    ~state() { close(descriptor); }
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    int descriptor;
    struct stat status {};
    /// -1 for what has no places.
    off_t start = -1;
    bool at_end = false;
};

input_source::input_source(const std::filesystem::path& file)
    : state_(std::make_unique<state>(open_source(file))) {}

input_source::~input_source() = default;

std::size_t input_source::read_available(std::span<char> room) {
    pollfd entry{state_->descriptor, POLLIN, 0};
    if (poll(&entry, 1, 0) == 0) {
        return 0;
    }
    const ssize_t count = read(state_->descriptor, room.data(), room.size());
    if (count == -1 && errno == EINTR) {
        return 0;
    }
    checked(static_cast<int>(count), "read");
    state_->at_end = count == 0;
    return static_cast<std::size_t>(count);
}

bool input_source::at_end() const {
    return state_->at_end;
}

waitable input_source::ready() const {
    return state_->descriptor;
}

void input_source::wait() {
    pollfd entry{state_->descriptor, POLLIN, 0};
    poll(&entry, 1, static_cast<int>(longest_wait.count()));
}

bool input_source::is_regular_file() const {
    return S_ISREG(state_->status.st_mode);
}

bool input_source::can_go_back() const {
    return is_regular_file();
}

void input_source::go_back() {
    lseek(state_->descriptor, state_->start, SEEK_SET);
}

std::uint64_t input_source::size() const {
    struct stat now {};
    const bool is_known = is_regular_file() && fstat(state_->descriptor, &now) == 0;
    return is_known ? static_cast<std::uint64_t>(now.st_size) : 0;
}

}  // namespace KIVRA::TSHARK::PLATFORM
