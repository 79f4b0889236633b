#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <utility>

#include "platform/console/folder_watch.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace fs = std::filesystem;

namespace {

std::error_code last_error() {
    return {errno, std::generic_category()};
}

/// A lease for reading is given only on a file that nobody has open for writing (fcntl(2)).
bool is_being_written(const fs::path& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor == -1) {
        return false;
    }
    // Who opens the file for writing meanwhile waits until it is closed here. The system tells of
    // that by a signal, which is to be one that ends nothing.
    const bool is_open = fcntl(descriptor, F_SETSIG, SIGURG) == 0 &&
                         fcntl(descriptor, F_SETLEASE, F_RDLCK) == -1 && errno == EAGAIN;
    close(descriptor);
    return is_open;
}

bool is_missing(const std::error_code& error) {
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

bool is_same_or_below(const fs::path& path, const fs::path& folder) {
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

}  // namespace

struct folder_watch::state {
    state(fs::path watched, watched_names wanted)
        : root(std::move(watched)), names(std::move(wanted)) {
        if (const auto error = begin()) {
            end();
            throw std::system_error(error);
        }
    }
    ~state() { end(); }
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    /// Watches all folders and lists what is there.
    std::error_code begin() {
        queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (queue == -1) {
            return last_error();
        }
        return watch(root);
    }

    void end() {
        folders.clear();
        if (queue != -1) {
            close(std::exchange(queue, -1));
        }
    }

    /// First watches the folder, and then lists it: nothing falls in between.
    std::error_code watch(const fs::path& folder) {
        const int number =
            inotify_add_watch(queue, folder.c_str(),
                              IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
        if (number == -1) {
            return last_error();
        }
        folders[number] = folder;
        std::error_code error;
        fs::directory_iterator entry(folder, error);
        for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code unreachable;
            if (entry->is_directory(unreachable) && !entry->is_symlink(unreachable)) {
                watch_within(entry->path());
            } else {
                take(entry->path());
            }
        }
        return error;
    }

    void watch_within(const fs::path& folder) {
        if (!names.folder(folder.filename())) {
            return;
        }
        // One that is gone again leaves nothing to watch.
        if (const auto error = watch(folder); error && !is_missing(error)) {
            news.obstacles.push_back({folder, error});
        }
    }

    void take(const fs::path& file) {
        if (names.file(file.filename())) {
            files.insert(file);
        }
    }

    /// Those that nobody writes any more are news. One may count as open for a moment after the
    /// queue has told of its end, so all that are open are asked for again.
    void sift_files() {
        for (auto file = files.begin(); file != files.end();) {
            std::error_code unreachable;
            const bool is_there = fs::is_regular_file(*file, unreachable);
            if (is_there && is_being_written(*file)) {
                ++file;
                continue;
            }
            if (is_there) {
                news.files.push_back(*file);
            }
            file = files.erase(file);
        }
    }

    /// What was moved away is no longer called so.
    void forget(const fs::path& folder) {
        std::erase_if(folders, [&](const auto& entry) {
            if (!is_same_or_below(entry.second, folder)) {
                return false;
            }
            inotify_rm_watch(queue, entry.first);
            return true;
        });
    }

    void note(const inotify_event& event, const char* name) {
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            end();
            news.is_gone = static_cast<bool>(begin());
            return;
        }
        const auto place = folders.find(event.wd);
        if (place == folders.end()) {
            return;
        }
        const fs::path folder = place->second;
        if ((event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED)) != 0) {
            news.is_gone = news.is_gone || folder == root;
            if ((event.mask & IN_IGNORED) != 0) {
                folders.erase(place);
            }
            return;
        }
        note(event.mask, folder / name);
    }

    void note(std::uint32_t what, const fs::path& path) {
        if ((what & IN_ISDIR) == 0) {
            if ((what & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0) {
                take(path);
            }
        } else if ((what & IN_MOVED_FROM) != 0) {
            forget(path);
        } else {
            watch_within(path);
        }
    }

    void read_queue() {
        alignas(inotify_event) std::array<char, 65'536> buffer{};
        const int read_from = queue;
        const ssize_t size = read(read_from, buffer.data(), buffer.size());
        // What stands behind a note that the queue was full has been listed by then.
        for (ssize_t at = 0; at < size && queue == read_from;) {
            const char* const place = buffer.data() + at;
            inotify_event event{};
            std::memcpy(&event, place, sizeof event);
            note(event, event.len == 0 ? "" : place + sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }

    fs::path root;
    watched_names names;
    int queue = -1;
    /// By the numbers that the queue calls them.
    std::map<int, fs::path> folders;
    /// Those that have come and may still be open, sorted.
    std::set<fs::path> files;
    folder_news news;
    bool is_new = true;
};

folder_watch::folder_watch(fs::path folder, watched_names names)
    : state_(std::make_unique<state>(std::move(folder), std::move(names))) {}

folder_watch::~folder_watch() = default;

folder_news folder_watch::next(std::chrono::milliseconds at_most) {
    const bool is_first = std::exchange(state_->is_new, false);
    pollfd entry{state_->queue, POLLIN, 0};
    if (poll(&entry, 1, is_first ? 0 : static_cast<int>(at_most.count())) > 0) {
        state_->read_queue();
    }
    state_->sift_files();
    return std::exchange(state_->news, {});
}

}  // namespace KIVRA::TSHARK::PLATFORM
