#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

std::filesystem::file_status file_status(const std::filesystem::path& path,
                                         std::error_code& error) {
    return std::filesystem::status(path, error);
}

}  // namespace KIVRA::TSHARK::PLATFORM
