#include "context/file_status.h"

#include <system_error>

namespace KIVRA::TSHARK {

namespace fs = std::filesystem;

bool entry_exists(const fs::path& path) {
    std::error_code error;
    const bool found = fs::exists(path, error);
    if (error) {
        throw fs::filesystem_error("exists", path, error);
    }
    return found;
}

void remove_entry(const fs::path& path) {
    std::error_code error;
    fs::remove(path, error);
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
