#include <dlfcn.h>

#include <stdexcept>

#include "platform/shared_library.h"

namespace KIVRA::TSHARK::PLATFORM {

const char* const shared_library_extension = ".so";

namespace {

void* load(const std::filesystem::path& file) {
    // With its folder: a bare name would be searched for in the system's library folders.
    return dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
}

[[noreturn]] void fail() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): libraries are loaded by one thread
    throw std::runtime_error(dlerror());
}

}  // namespace

shared_library::shared_library(const std::filesystem::path& file) : handle_(load(file)) {
    if (handle_ == nullptr) {
        fail();
    }
}

void* shared_library::symbol(const char* name) const {
    void* found = dlsym(handle_.get(), name);
    if (found == nullptr) {
        fail();
    }
    return found;
}

void shared_library::unloader::operator()(void* handle) const {
    dlclose(handle);
}

}  // namespace KIVRA::TSHARK::PLATFORM
