#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/platform.h"
#include "platform/signal_guard_posix.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

/// @return how many bytes went in
std::size_t write_all(int descriptor, std::string_view content) {
    std::size_t written = 0;
    while (written < content.size()) {
        const auto rest = content.substr(written);
        const ssize_t count = write(descriptor, rest.data(), rest.size());
        if (count == -1 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        written += static_cast<std::size_t>(count);
    }
    return written;
}

}  // namespace

void write_file(const std::filesystem::path& file, std::string_view content) {
    // A write beyond the host's limit on the size of files raises it, which ends a process that
    // does not handle it.
    const signal_guard guard(SIGXFSZ);
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor == -1) {
        return;
    }
    // Cut afterwards: some file systems (ext4) wait for the disk when a file is truncated first.
    const std::size_t written = write_all(descriptor, content);
    if (ftruncate(descriptor, static_cast<off_t>(written)) == -1) {
        // A pipe or a device has no length.
    }
    close(descriptor);
}

void remove_entry(const std::filesystem::path& path, std::error_code& error) {
    std::filesystem::remove(path, error);
}

}  // namespace KIVRA::TSHARK::PLATFORM
