#include "platform/console/c_stream.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace KIVRA::TSHARK::PLATFORM {

std::FILE* c_stream::open() {
    constexpr cookie_io_functions_t functions{read_some, nullptr, nullptr, nullptr};
    std::FILE* stream = fopencookie(this, "rb", functions);
    if (stream == nullptr) {
        throw std::system_error(errno, std::generic_category(), "fopencookie");
    }
    return stream;
}

/// What is thrown must not pass the C code that reads the stream.
ssize_t c_stream::read_some(void* self, char* buffer, std::size_t size) {
    auto& stream = *static_cast<c_stream*>(self);
    try {
        return static_cast<ssize_t>(stream.input_.read({buffer, size}));
    } catch (...) {
        stream.thrown_ = std::current_exception();
        errno = ECANCELED;
        return -1;
    }
}

void c_stream::rethrow() {
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

}  // namespace KIVRA::TSHARK::PLATFORM
