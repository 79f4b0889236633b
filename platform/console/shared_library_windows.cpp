#include <windows.h>

#include <stdexcept>
#include <string>
#include <system_error>

#include "platform/console/shared_library.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

[[noreturn]] void fail() {
    throw std::runtime_error(std::system_category().message(static_cast<int>(GetLastError())));
}

}  // namespace

shared_library::shared_library(const std::filesystem::path& file)
    : handle_(LoadLibraryW(std::filesystem::absolute(file).c_str())) {
    if (handle_ == nullptr) {
        fail();
    }
}

void* shared_library::symbol(const char* name) const {
    const FARPROC found = GetProcAddress(static_cast<HMODULE>(handle_.get()), name);
    if (found == nullptr) {
        fail();
    }
    return reinterpret_cast<void*>(found);
}

void shared_library::unloader::operator()(void* handle) const {
    FreeLibrary(static_cast<HMODULE>(handle));
}

}  // namespace KIVRA::TSHARK::PLATFORM
