#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "tests/support/system.h"

namespace KIVRA::TSHARK::TESTING {

void set_environment(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name.c_str());
    }
}

environment_guard::environment_guard(std::string name) : name_(std::move(name)) {
    if (const char* value = std::getenv(name_.c_str())) {
        value_ = value;
    }
}

environment_guard::~environment_guard() {
    set_environment(name_, value_);
}

std::vector<std::uint32_t> children() {
    const auto self = std::to_string(::getpid());
    std::ifstream list("/proc/self/task/" + self + "/children");
    return {std::istream_iterator<std::uint32_t>(list), {}};
}

void kill_process(std::uint32_t process) {
    const auto id = static_cast<pid_t>(process);
    ::kill(id, SIGKILL);
    // It stays for whoever has started it.
    siginfo_t ended{};
    ::waitid(P_PID, process, &ended, WEXITED | WNOWAIT);
}

shared_library::shared_library(const std::filesystem::path& file)
    : handle_(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
        throw std::runtime_error(::dlerror());
    }
}

shared_library::~shared_library() {
    ::dlclose(handle_);
}

void* shared_library::symbol(const char* name) const {
    void* found = ::dlsym(handle_, name);
    if (found == nullptr) {
        throw std::runtime_error(std::string("no symbol ") + name);
    }
    return found;
}

std::string narrow_text(const std::filesystem::path& path) {
    return path.string();
}

}  // namespace KIVRA::TSHARK::TESTING
