#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

std::filesystem::path path_from_narrow(std::string_view text) {
    return {text};
}

}  // namespace KIVRA::TSHARK::PLATFORM
