#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/console/input_stream.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

int checked(int result, const char* what) {
    if (result == -1) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

bool is_folder(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

bool has_nothing_to_read(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, 0) == 0;
}

}  // namespace

input_stream::input_stream(const std::filesystem::path& file, std::function<void()> before_waiting)
    : descriptor_(file.empty()
                      ? checked(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1), "dup")
                      : checked(::open(file.c_str(), O_RDONLY | O_CLOEXEC), "open")),
      before_waiting_(std::move(before_waiting)) {
    if (is_folder(descriptor_)) {
        ::close(descriptor_);
        throw std::system_error(EISDIR, std::generic_category(), "open");
    }
    if (is_regular_file()) {
        start_ = static_cast<std::uint64_t>(lseek(descriptor_, 0, SEEK_CUR));
    }
}

input_stream::~input_stream() {
    close(descriptor_);
}

std::FILE* input_stream::open() {
    constexpr cookie_io_functions_t functions{read_some, nullptr, nullptr, nullptr};
    std::FILE* stream = fopencookie(this, "rb", functions);
    if (stream == nullptr) {
        throw std::system_error(errno, std::generic_category(), "fopencookie");
    }
    return stream;
}

ssize_t input_stream::read_some(void* self, char* buffer, std::size_t size) {
    auto& stream = *static_cast<input_stream*>(self);
    stream.announce_waiting();
    if (stream.thrown_) {
        errno = ECANCELED;
        return -1;
    }
    return stream.read({buffer, size});
}

/// Out of memory first, then from the descriptor.
ssize_t input_stream::read(std::span<char> room) {
    if (is_rewound_ && repeated_ < beginning_.size()) {
        const std::size_t count = beginning_.copy(room.data(), room.size(), repeated_);
        repeated_ += count;
        position_ += count;
        return static_cast<ssize_t>(count);
    }
    const ssize_t count = ::read(descriptor_, room.data(), room.size());
    if (count > 0) {
        position_ += static_cast<std::uint64_t>(count);
        if (!is_rewound_ && !start_) {
            beginning_.append(room.data(), static_cast<std::size_t>(count));
        }
    }
    return count;
}

void input_stream::rewind() {
    if (start_) {
        lseek(descriptor_, static_cast<off_t>(*start_), SEEK_SET);
    }
    is_rewound_ = true;
    position_ = 0;
}

std::size_t input_stream::read_available(std::span<char> room) {
    const bool is_in_memory = is_rewound_ && repeated_ < beginning_.size();
    if (!is_in_memory && has_nothing_to_read(descriptor_)) {
        return 0;
    }
    const ssize_t count = read(room);
    if (count == -1 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "read");
    }
    at_end_ = count == 0;
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

void input_stream::announce() const {
    if (before_waiting_) {
        before_waiting_();
    }
}

/// What is thrown must not pass the C code that reads the stream.
void input_stream::announce_waiting() {
    const bool is_in_memory = is_rewound_ && repeated_ < beginning_.size();
    if (!before_waiting_ || is_in_memory || !has_nothing_to_read(descriptor_)) {
        return;
    }
    try {
        before_waiting_();
    } catch (...) {
        thrown_ = std::current_exception();
    }
}

void input_stream::rethrow() {
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

bool input_stream::is_regular_file() const {
    struct stat status {};
    return fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
}

std::uint64_t input_stream::size() const {
    struct stat status {};
    const bool known = fstat(descriptor_, &status) == 0;
    return known && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace KIVRA::TSHARK::PLATFORM
