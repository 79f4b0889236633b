#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

std::filesystem::path path_from_narrow(std::string_view text) {
    return {text};
}

std::string narrow_from_path(const std::filesystem::path& path) {
    return path.native();
}

}  // namespace KIVRA::TSHARK::PLATFORM
