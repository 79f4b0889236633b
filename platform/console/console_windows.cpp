#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "platform/console/console.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace fs = std::filesystem;

namespace {

std::atomic<bool> interruption = false;
std::atomic<bool> all_are_noted = false;

BOOL WINAPI note_interruption(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        return FALSE;
    }
    // The second one is left to the system, which ends the process, unless that is not wanted.
    return interruption.exchange(true) && !all_are_noted ? FALSE : TRUE;
}

HANDLE handle_of(standard_stream stream) {
    switch (stream) {
        case standard_stream::input:
            return GetStdHandle(STD_INPUT_HANDLE);
        case standard_stream::output:
            return GetStdHandle(STD_OUTPUT_HANDLE);
        case standard_stream::error:
            return GetStdHandle(STD_ERROR_HANDLE);
    }
    return nullptr;
}

/// The code page that the console had, for whoever uses it next.
UINT former_code_page = 0;

void restore_code_page() {
    SetConsoleOutputCP(former_code_page);
}

std::string utf8_from_wide(const wchar_t* text) {
    const std::u8string converted = fs::path(text).u8string();
    return {converted.begin(), converted.end()};
}

}  // namespace

std::vector<std::string> utf8_arguments(int /*count*/, char** /*arguments*/) {
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(utf8_from_wide(wide[i]));
    }
    LocalFree(wide);
    return arguments;
}

fs::path program_file() {
    constexpr std::size_t longest_path = 32'768;
    std::wstring name(longest_path, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length == 0) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    name.resize(length);
    return name;
}

void prepare_standard_streams() {
    for (std::FILE* const stream : {stdin, stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
    }
    former_code_page = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    static_cast<void>(std::atexit(restore_code_page));
}

bool is_terminal(standard_stream stream) {
    const HANDLE handle = handle_of(stream);
    DWORD mode = 0;
    if (!GetConsoleMode(handle, &mode)) {
        return false;
    }
    return stream == standard_stream::input ||
           SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::size_t output_columns() {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (!GetConsoleScreenBufferInfo(handle_of(standard_stream::output), &screen)) {
        return 0;
    }
    const int columns = screen.srWindow.Right - screen.srWindow.Left + 1;
    return static_cast<std::size_t>(columns);
}

/// The runtime has no number of its own for ERROR_NO_DATA, which is what a pipe says.
bool tells_of_missing_reader(int error) {
    return error == EPIPE ||
           (error == EINVAL && GetFileType(handle_of(standard_stream::output)) == FILE_TYPE_PIPE);
}

/// The failed write has been noticed, and nothing else is known of it here.
void end_by_broken_pipe() {}

void install_interrupt_handler() {
    SetConsoleCtrlHandler(note_interruption, TRUE);
}

void note_all_interruptions() {
    all_are_noted = true;
}

bool interrupted() {
    return interruption;
}

void end_by_interrupt() {
    static_cast<void>(std::fflush(nullptr));
    // Nothing that stands in line for the end is done then.
    restore_code_page();
    ExitProcess(static_cast<UINT>(STATUS_CONTROL_C_EXIT));
}

bool is_executable_file(const fs::path& file) {
    std::error_code unreachable;
    return fs::is_regular_file(file, unreachable);
}

/// GCC's library knows whole seconds only.
std::optional<std::int64_t> write_time(const fs::path& file) {
    WIN32_FILE_ATTRIBUTE_DATA entry{};
    if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &entry)) {
        return std::nullopt;
    }
    const ULARGE_INTEGER time{
        {entry.ftLastWriteTime.dwLowDateTime, entry.ftLastWriteTime.dwHighDateTime}};
    return static_cast<std::int64_t>(time.QuadPart);
}

std::optional<std::string> write_obstacle(const fs::path& file_or_folder) {
    constexpr int may_write = 2;
    if (_waccess(file_or_folder.c_str(), may_write) == 0) {
        return std::nullopt;
    }
    return std::generic_category().message(errno);
}

}  // namespace KIVRA::TSHARK::PLATFORM
