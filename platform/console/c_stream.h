/// An input as a stream for C code. POSIX.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <exception>

#include "platform/console/input_stream.h"

namespace KIVRA::TSHARK::PLATFORM {

/// Stays where it is as long as its stream is read.
class c_stream {
  public:
    /// @param input outlives the object
    explicit c_stream(input_stream& input) : input_(input) {}
    ~c_stream() = default;
    c_stream(const c_stream&) = delete;
    c_stream& operator=(const c_stream&) = delete;

    /// A stream that reads on; the caller closes it, before the object ends. What the input throws
    /// ends it, see `rethrow`.
    /// @throws std::system_error
    std::FILE* open();

    /// Throws what the input has thrown.
    void rethrow();

  private:
    static ssize_t read_some(void* self, char* buffer, std::size_t size);

    input_stream& input_;
    std::exception_ptr thrown_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
