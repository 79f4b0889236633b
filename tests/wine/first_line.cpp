// Runs a program of Windows as one sits before it whose capture is live:
//
//   first_line THEN CAPTURE PROGRAM [ARGUMENT...]
//
// The capture goes into a pipe that stays open. Once the program has printed its first line, THEN
// says what happens: "close" ends the input, "leave" does so and reads no further, "interrupt" is
// Ctrl-C. Prints what the program prints, and at last "status" and its exit status in hexadecimal
// to the standard error, which the program shares.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

/// A pipe, one end of which the program gets.
struct pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;

    explicit pipe(HANDLE pipe::*ours) {
        SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
        // Room for a whole capture.
        CreatePipe(&read, &write, &attributes, 1'048'576);
        SetHandleInformation(this->*ours, HANDLE_FLAG_INHERIT, 0);
    }
};

/// @return what stands behind the first arguments, this program's own among them
std::wstring command_line_behind(int arguments) {
    std::wstring line = GetCommandLineW();
    for (; arguments > 0; --arguments) {
        const auto end = line.starts_with(L'"') ? line.find(L'"', 1) + 1 : line.find(L' ');
        line.erase(0, line.find_first_not_of(L' ', end));
    }
    return line;
}

/// @param flags CreateProcess's
PROCESS_INFORMATION start(std::wstring line, std::array<HANDLE, 3> streams, DWORD flags) {
    STARTUPINFOW start_up{};
    start_up.cb = sizeof start_up;
    start_up.dwFlags = STARTF_USESTDHANDLES;
    start_up.hStdInput = streams[0];
    start_up.hStdOutput = streams[1];
    start_up.hStdError = streams[2];
    PROCESS_INFORMATION process{};
    CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start_up,
                   &process);
    return process;
}

/// Waits for the process.
DWORD status_of(const PROCESS_INFORMATION& process) {
    DWORD status = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    return status;
}

void feed(const pipe& input, const wchar_t* file) {
    std::ifstream stream(std::filesystem::path(file), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    DWORD written = 0;
    WriteFile(input.write, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

/// Prints what comes, to its end or to that of the first line.
void print(const pipe& output, bool one_line) {
    char c = 0;
    DWORD count = 0;
    do {
        if (!ReadFile(output.read, &c, 1, &count, nullptr) || count == 0) {
            return;
        }
        std::cout.put(c);
    } while (!one_line || c != '\n');
}

void run(const std::wstring& then, const wchar_t* capture) {
    const pipe input(&pipe::write);
    const pipe output(&pipe::read);
    const auto process = start(command_line_behind(3),
                               {input.read, output.write, GetStdHandle(STD_ERROR_HANDLE)}, 0);
    CloseHandle(input.read);
    CloseHandle(output.write);
    feed(input, capture);
    print(output, /*one_line=*/true);
    if (then == L"interrupt") {
        // For all processes of the console, this one included. Wine knows no Ctrl-Break.
        SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
        GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    }
    if (then == L"leave") {
        CloseHandle(output.read);
    }
    if (then != L"interrupt") {
        CloseHandle(input.write);
    }
    print(output, /*one_line=*/false);
    std::cerr << "status " << std::hex << std::uppercase << status_of(process) << '\n';
}

}  // namespace

int main() {
    DWORD process = 0;
    if (GetConsoleProcessList(&process, 1) == 0) {
        // Ctrl-C comes from a console. Without a display Wine has only those without a window.
        status_of(start(GetCommandLineW(),
                        {GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE),
                         GetStdHandle(STD_ERROR_HANDLE)},
                        CREATE_NO_WINDOW));
        return 0;
    }
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    run(arguments[1], arguments[2]);
}
