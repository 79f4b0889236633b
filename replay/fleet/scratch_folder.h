/// A folder for a run's temporary files.
#pragma once

#include <filesystem>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// A new folder for this user alone; it goes with the object, with all that is in it.
class scratch_folder {
  public:
    /// One among the system's temporary files.
    /// @throws std::filesystem::filesystem_error when it can't be made
    scratch_folder();

    /// @param name how its name begins; the rest is a number
    /// @throws std::filesystem::filesystem_error when it can't be made
    scratch_folder(const std::filesystem::path& parent, const std::string& name);

    ~scratch_folder();
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Removes folders of that name that runs have left which could not end by themselves. What can't
/// be removed stays.
void remove_scratch_folders(const std::filesystem::path& parent, const std::string& name);

}  // namespace KIVRA::TSHARK::REPLAY
