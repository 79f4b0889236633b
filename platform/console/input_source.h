/// A file, a pipe or the standard input, read without waiting.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "platform/piped_process.h"

namespace KIVRA::TSHARK::PLATFORM {

class input_source {
  public:
    /// @param file empty for the standard input
    /// @throws std::system_error when the file can't be opened, or is a folder
    explicit input_source(const std::filesystem::path& file);
    ~input_source();
    input_source(const input_source&) = delete;
    input_source& operator=(const input_source&) = delete;

    /// Reads what there is.
    /// @return how many bytes; 0 when there is nothing at once, or nothing more at all
    /// @throws std::system_error
    std::size_t read_available(std::span<char> room);

    /// Whether there is nothing more at all.
    bool at_end() const;

    /// To wait for more.
    waitable ready() const;

    /// Waits for more, or for the end, but not long: there may be an interruption to notice.
    void wait();

    static constexpr std::chrono::milliseconds longest_wait{200};

    /// Whether it is a file of a disk, which any program can open and read from its beginning.
    bool is_regular_file() const;

    /// Whether `go_back` may be called.
    bool can_go_back() const;

    /// Goes back to where the reading began.
    void go_back();

    /// The size of a file of a disk in bytes, else 0.
    std::uint64_t size() const;

  private:
    struct state;

    std::unique_ptr<state> state_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
