#include <array>
#include <cstdlib>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

std::optional<std::string> path_variable() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment
    const char* value = std::getenv("PATH");
    if (value == nullptr) {
        return std::nullopt;
    }
    return value;
}

char path_separator() {
    return ':';
}

std::span<const std::string_view> tshark_executable_names() {
    static constexpr std::array<std::string_view, 2> names{"tshark.exe", "tshark"};
    return names;
}

}  // namespace KIVRA::TSHARK::PLATFORM
