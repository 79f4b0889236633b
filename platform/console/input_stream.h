/// A file, a pipe or the standard input as a stream for C code, which says when it is about to
/// wait.
#pragma once

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>

namespace KIVRA::TSHARK::PLATFORM {

/// Stays where it is as long as its stream is read.
class input_stream {
  public:
    /// @param file empty for the standard input
    /// @param before_waiting called each time when nothing more can be read at once; may be none.
    ///     What it throws ends the stream, see `rethrow`
    /// @throws std::system_error when the file can't be opened
    input_stream(const std::filesystem::path& file, std::function<void()> before_waiting);
    ~input_stream();
    input_stream(const input_stream&) = delete;
    input_stream& operator=(const input_stream&) = delete;

    /// A new stream that reads on; the caller closes it, before the object ends.
    /// @throws std::system_error
    std::FILE* open();

    /// Throws what the callback has thrown.
    void rethrow();

    /// The size in bytes; 0 where there is none, as of a pipe.
    std::uint64_t size() const;

    /// How many bytes have been read.
    std::uint64_t position() const { return position_; }

  private:
    static ssize_t read_some(void* self, char* buffer, std::size_t size);
    void announce_waiting();

    int descriptor_;
    std::function<void()> before_waiting_;
    std::exception_ptr thrown_;
    std::uint64_t position_ = 0;
};

}  // namespace KIVRA::TSHARK::PLATFORM
