/// Files that come into a folder. Linux tells of them; elsewhere it is an error to ask.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <system_error>
#include <vector>

namespace KIVRA::TSHARK::PLATFORM {

/// Which names count; asked for the last part of a path.
struct watched_names {
    std::function<bool(const std::filesystem::path& name)> file;
    /// Folders within the folder that are watched, too, and those within them.
    std::function<bool(const std::filesystem::path& name)> folder;
};

struct folder_news {
    /// Regular files that nobody has open for writing: those that stood there, were moved in, or
    /// were closed after writing. One may come twice. Where the file system does not tell whether
    /// one is open, it counts as closed.
    std::vector<std::filesystem::path> files;

    struct obstacle {
        std::filesystem::path folder;
        std::error_code reason;
    };
    /// Folders within the folder that can't be watched.
    std::vector<obstacle> obstacles;

    /// The folder itself was removed or moved: there is no more news.
    bool is_gone = false;
};

class folder_watch {
  public:
    /// @param folder begins the paths of its files
    /// @throws std::system_error when it can't be watched; std::runtime_error where no folder can
    folder_watch(std::filesystem::path folder, watched_names names);
    ~folder_watch();
    folder_watch(const folder_watch&) = delete;
    folder_watch& operator=(const folder_watch&) = delete;

    /// What is new, files sorted by their paths; at first, those that stand there. A file that
    /// comes into a folder before the folder is watched is among them. Where the system has lost
    /// some of the news, all files come again.
    /// @param at_most how long to wait for news; a signal ends it, too
    folder_news next(std::chrono::milliseconds at_most);

  private:
    struct state;

    std::unique_ptr<state> state_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
