#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

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

bool has_nothing_to_read(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, 0) == 0;
}

}  // namespace

input_stream::input_stream(const std::filesystem::path& file, std::function<void()> before_waiting)
    : descriptor_(file.empty()
                      ? checked(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1), "dup")
                      : checked(::open(file.c_str(), O_RDONLY | O_CLOEXEC), "open")),
      before_waiting_(std::move(before_waiting)) {}

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
    const ssize_t count = read(stream.descriptor_, buffer, size);
    if (count > 0) {
        stream.position_ += static_cast<std::uint64_t>(count);
    }
    return count;
}

/// What is thrown must not pass the C code that reads the stream.
void input_stream::announce_waiting() {
    if (!before_waiting_ || !has_nothing_to_read(descriptor_)) {
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

std::uint64_t input_stream::size() const {
    struct stat status {};
    const bool known = fstat(descriptor_, &status) == 0;
    return known && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace KIVRA::TSHARK::PLATFORM
