#include <windows.h>

#include <fstream>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

void write_file(const std::filesystem::path& file, std::string_view content) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
}

void remove_entry(const std::filesystem::path& path, std::error_code& error) {
    // GCC's library removes nothing, and without an error, where a query fails.
    if (file_status(path, error).type() == std::filesystem::file_type::none) {
        return;
    }
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
    std::filesystem::remove(path, error);
}

}  // namespace KIVRA::TSHARK::PLATFORM
