#include <windows.h>

#include <array>
#include <cstdlib>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

/// The system's copy of the environment, which a host may have changed behind the runtime's.
std::optional<std::string> system_variable(const char* name) {
    const DWORD size = GetEnvironmentVariableA(name, nullptr, 0);
    if (size == 0) {
        return std::nullopt;
    }
    std::string value(size, '\0');
    GetEnvironmentVariableA(name, value.data(), size);
    value.pop_back();
    return value;
}

}  // namespace

std::optional<std::string> path_variable() {
    if (const char* value = std::getenv("PATH")) {
        return value;
    }
    return system_variable("PATH");
}

char path_separator() {
    return ';';
}

std::span<const std::string_view> tshark_executable_names() {
    static constexpr std::array<std::string_view, 1> names{"tshark.exe"};
    return names;
}

}  // namespace KIVRA::TSHARK::PLATFORM
