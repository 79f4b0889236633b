#include <windows.h>
// After the header that it needs.
#include <tlhelp32.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "tests/support/system.h"

namespace KIVRA::TSHARK::TESTING {

void set_environment(const std::string& name, const std::optional<std::string>& value) {
    // The runtime passes it on to the system, but can't keep an empty value: the system can.
    ::_putenv_s(name.c_str(), value.value_or("").c_str());
    ::SetEnvironmentVariableA(name.c_str(), value ? value->c_str() : nullptr);
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
    std::vector<std::uint32_t> found;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Process32First(snapshot, &entry); more;
         more = ::Process32Next(snapshot, &entry)) {
        if (entry.th32ParentProcessID == ::GetCurrentProcessId()) {
            found.push_back(entry.th32ProcessID);
        }
    }
    ::CloseHandle(snapshot);
    return found;
}

void kill_process(std::uint32_t process) {
    const HANDLE handle = ::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, process);
    ::TerminateProcess(handle, 1);
    ::WaitForSingleObject(handle, INFINITE);
    ::CloseHandle(handle);
}

shared_library::shared_library(const std::filesystem::path& file)
    : handle_(::LoadLibraryW(file.c_str())) {
    if (handle_ == nullptr) {
        throw std::runtime_error("cannot load the library: error " +
                                 std::to_string(::GetLastError()));
    }
}

shared_library::~shared_library() {
    ::FreeLibrary(static_cast<HMODULE>(handle_));
}

void* shared_library::symbol(const char* name) const {
    const FARPROC found = ::GetProcAddress(static_cast<HMODULE>(handle_), name);
    if (found == nullptr) {
        throw std::runtime_error(std::string("no symbol ") + name);
    }
    return reinterpret_cast<void*>(found);
}

std::string narrow_text(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int size = static_cast<int>(wide.size());
    std::string text(wide.size() * 4, '\0');
    const int length = ::WideCharToMultiByte(CP_ACP, 0, wide.data(), size, text.data(),
                                             static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

}  // namespace KIVRA::TSHARK::TESTING
