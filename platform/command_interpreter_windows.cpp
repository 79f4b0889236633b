#include "platform/command_interpreter_windows.h"

#include <windows.h>

#include <algorithm>

namespace KIVRA::TSHARK::PLATFORM {

namespace {

std::string in_quotes(const std::string& text) {
    return R"(")" + text + R"(")";
}

std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

bool is_plain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

std::string cmd_command_line(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments,
                             const std::filesystem::path& output) {
    std::string command = in_quotes(utf8(program));
    for (const std::string& argument : arguments) {
        const bool plain = !argument.empty() && std::ranges::all_of(argument, is_plain);
        command += ' ' + (plain ? argument : in_quotes(argument));
    }
    return R"(cmd /c )" + in_quotes(command + " > " + in_quotes(utf8(output)));
}

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
