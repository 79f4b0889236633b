/// A folder for a run's temporary files.
#pragma once

#include <filesystem>

namespace KIVRA::TSHARK::REPLAY {

/// A new folder among the system's temporary files, for this user alone; it goes with the object,
/// with all that is in it.
class scratch_folder {
  public:
    /// @throws std::filesystem::filesystem_error when it can't be made
    scratch_folder();
    ~scratch_folder();
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace KIVRA::TSHARK::REPLAY
