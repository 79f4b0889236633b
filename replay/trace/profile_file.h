/// The power-profile parameter file of a run: whether the run wrote it, and what it says.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

struct profile_value {
    std::string name;
    /// The text; the JSON of a value that is none.
    std::string value;
};

/// What a profile holds, sorted by name.
using profile_content = std::vector<profile_value>;

/// Watches a file from the object's creation, before the run, on.
class profile_file {
  public:
    /// @param temporary whether the file goes when the run has ended
    explicit profile_file(std::filesystem::path path, bool temporary = false);

    const std::filesystem::path& path() const { return path_; }
    bool is_temporary() const { return temporary_; }

    /// Whether the file was written since the object was created.
    bool written() const;

    /// Why the file could not be written, when it could not: the system's reason.
    std::optional<std::string> obstacle() const;

    /// @throws std::runtime_error when the file can't be read as a profile
    profile_content read() const;

  private:
    std::filesystem::path path_;
    bool temporary_;
    std::optional<std::int64_t> former_write_time_;
};

}  // namespace KIVRA::TSHARK::REPLAY
