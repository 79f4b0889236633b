/// A file, a pipe or the standard input that is read once, after a look at its beginning, and that
/// says when its reader is about to wait. An interruption is the end of what is
/// no file of a disk: nothing more is taken from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "platform/console/input_source.h"

namespace KIVRA::TSHARK::PLATFORM {

class input_stream {
  public:
    /// @param file empty for the standard input
    /// @param before_waiting called each time when nothing more can be read at once; may be none
    /// @throws std::system_error when the file can't be opened
    input_stream(const std::filesystem::path& file, std::function<void()> before_waiting);

    /// Reads again from where the first reading began. What was read of a pipe until then comes out
    /// of memory; from the second reading on nothing is kept.
    void rewind();

    /// Reads what there is, without waiting and without the callback.
    /// @return how many bytes; 0 when there is nothing at once, or nothing more at all
    /// @throws std::system_error
    std::size_t read_available(std::span<char> room);

    /// The same, but waits for something to read, with a call of the callback before.
    /// @return 0 at the end alone
    /// @throws std::system_error, and what the callback throws
    std::size_t read(std::span<char> room);

    /// Calls the callback, for a reader who waits by himself.
    void announce() const;

    /// Whether reading has come to the end.
    bool at_end() const;

    /// To wait for more.
    waitable ready() const { return source_.ready(); }

    /// Whether it is a file of a disk, which any program can open and read from its beginning.
    bool is_regular_file() const { return source_.is_regular_file(); }

    /// The size in bytes; 0 where there is none, as of a pipe.
    std::uint64_t size() const { return source_.size(); }

    /// How many bytes have been read.
    std::uint64_t position() const { return position_; }

  private:
    bool is_broken_off() const;
    bool is_repeating() const { return is_rewound_ && repeated_ < beginning_.size(); }

    input_source source_;
    std::function<void()> before_waiting_;
    /// What was read of a pipe before `rewind`, and how much of it after.
    std::string beginning_;
    std::size_t repeated_ = 0;
    bool is_rewound_ = false;
    std::uint64_t position_ = 0;
};

}  // namespace KIVRA::TSHARK::PLATFORM
