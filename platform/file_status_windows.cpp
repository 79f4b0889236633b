#include <windows.h>

#include <algorithm>
#include <array>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

/// What Microsoft's standard library takes for a missing entry.
constexpr std::array<DWORD, 5> not_found{ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND,
                                         ERROR_BAD_NETPATH, ERROR_INVALID_NAME, ERROR_DIRECTORY};

}  // namespace

std::filesystem::file_status file_status(const std::filesystem::path& path,
                                         std::error_code& error) {
    // GCC's library takes every failure for a missing entry, so the system is asked first.
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        const DWORD reason = GetLastError();
        if (std::ranges::find(not_found, reason) == not_found.end()) {
            error.assign(static_cast<int>(reason), std::system_category());
            return std::filesystem::file_status(std::filesystem::file_type::none);
        }
    }
    return std::filesystem::status(path, error);
}

}  // namespace KIVRA::TSHARK::PLATFORM
