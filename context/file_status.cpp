#include "context/file_status.h"

#include <system_error>

#include "platform/platform.h"

namespace KIVRA::TSHARK {

namespace fs = std::filesystem;

bool entry_exists(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = PLATFORM::file_status(path, error);
    if (status.type() == fs::file_type::none) {
        throw fs::filesystem_error("exists", path, error);
    }
    return fs::exists(status);
}

void remove_entry(const fs::path& path) {
    std::error_code error;
    PLATFORM::remove_entry(path, error);
    if (error) {
        throw fs::filesystem_error("remove", path, error);
    }
}

fs::path working_directory() {
    std::error_code error;
    fs::path directory = fs::current_path(error);
    if (error) {
        throw fs::filesystem_error("current_path()", error);
    }
    return directory;
}

}  // namespace KIVRA::TSHARK
