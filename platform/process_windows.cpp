#include <windows.h>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

const char* const default_interpreter = R"(C:\Windows\system32\cmd.exe)";

std::optional<std::uint32_t> run_command_line(const std::string& command_line,
                                              const char* interpreter) {
    // The system may write into the command line.
    std::string writable = command_line;
    STARTUPINFOA start_up{};
    static_assert(sizeof start_up == 104);
    start_up.cb = sizeof start_up;
    PROCESS_INFORMATION process{};

    constexpr BOOL inherit_handles = FALSE;
    if (!CreateProcessA(interpreter, writable.data(), nullptr, nullptr, inherit_handles,
                        CREATE_NO_WINDOW, nullptr, nullptr, &start_up, &process)) {
        return GetLastError();
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return std::nullopt;
}

}  // namespace KIVRA::TSHARK::PLATFORM
