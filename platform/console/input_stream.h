/// A file, a pipe or the standard input as a stream for C code, which says when it is about to
/// wait.
#pragma once

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "platform/piped_process.h"

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

    /// Reads again from where the first reading began. What was read of a pipe until then comes out
    /// of memory; from the second reading on nothing is kept.
    void rewind();

    /// Whether it is a file of a disk, which any program can open and read from its beginning.
    bool is_regular_file() const;

    /// Reads what there is, without waiting and without the callback.
    /// @return how many bytes; 0 when there is nothing at once, or nothing more at all, see
    ///     `at_end`
    /// @throws std::system_error
    std::size_t read_available(std::span<char> room);

    /// Whether `read_available` has come to the end.
    bool at_end() const { return at_end_; }

    /// To wait for more.
    waitable ready() const { return descriptor_; }

    /// Calls the callback that waiting is announced with, if there is one.
    void announce() const;

    /// Throws what the callback has thrown.
    void rethrow();

    /// The size in bytes; 0 where there is none, as of a pipe.
    std::uint64_t size() const;

    /// How many bytes have been read.
    std::uint64_t position() const { return position_; }

  private:
    static ssize_t read_some(void* self, char* buffer, std::size_t size);
    ssize_t read(std::span<char> room);
    void announce_waiting();

    int descriptor_;
    /// Where in a file of a disk the reading began; nothing for what has no places.
    std::optional<std::uint64_t> start_;
    /// The beginning of a pipe: what was read before `rewind`, and how much of it after.
    std::string beginning_;
    std::size_t repeated_ = 0;
    bool is_rewound_ = false;
    bool at_end_ = false;
    std::function<void()> before_waiting_;
    std::exception_ptr thrown_;
    std::uint64_t position_ = 0;
};

}  // namespace KIVRA::TSHARK::PLATFORM
