/// A file that a program adds to, bit by bit, and may be ended at any moment.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace KIVRA::TSHARK::PLATFORM {

/// Another process has the file.
class file_in_use : public std::runtime_error {
  public:
    file_in_use() : std::runtime_error("in use") {}
};

/// Belongs to one process at a time that opens it so; the system frees it when the process ends.
class journal_file {
  public:
    /// Opens the file, or makes an empty one.
    /// @throws file_in_use; std::system_error when it can't be opened for writing
    explicit journal_file(const std::filesystem::path& file);
    ~journal_file();
    journal_file(const journal_file&) = delete;
    journal_file& operator=(const journal_file&) = delete;

    /// Cuts off what stands behind so many bytes.
    /// @throws std::system_error
    void cut(std::uint64_t size);

    /// Adds a text to the end by one write, and returns when it is on the disk.
    /// @throws std::system_error when not all of it can be written
    void append(std::string_view text);

  private:
    struct state;

    std::unique_ptr<state> state_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
