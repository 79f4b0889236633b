// A tshark.exe for Wine that hands its arguments, its input and its output to a program of the
// system below.
#include <winsock2.h>
// After the header that has to come first.
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

namespace {

/// The arguments of this program, as they came.
std::wstring arguments() {
    const std::wstring line = GetCommandLineW();
    const bool quoted = line.starts_with(L'"');
    const auto end = quoted ? line.find(L'"', 1) + 1 : line.find(L' ');
    return end < line.size() ? line.substr(end) : L"";
}

/// Starts the program below.
/// @param meeting what run_below.sh is told of where it finds this program
bool start_below(const std::wstring& meeting) {
    std::wstring line = L"run_below \"" + meeting + L"\" \"" KIVRA_PROGRAM L"\"" + arguments();
    STARTUPINFOW start_up{};
    start_up.cb = sizeof start_up;
    PROCESS_INFORMATION process{};
    return CreateProcessW(KIVRA_RUN_BELOW, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                          &start_up, &process) != FALSE;
}

/// A fresh file.
std::filesystem::path make_marker() {
    std::array<wchar_t, MAX_PATH> name{};
    GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"run", 0, name.data());
    return name.data();
}

/// The program below gets this one's output, where that is a file, and no input.
int run_with_marker() {
    const std::filesystem::path marker = make_marker();
    if (!start_below(marker.native())) {
        std::filesystem::remove(marker);
        return 1;
    }
    // Wine gives no handle of a program of the system below, nor anything else to wait for.
    while (GetFileAttributesW(marker.c_str()) != INVALID_FILE_ATTRIBUTES) {
        Sleep(5);
    }
    return 0;
}

/// By which the program below is told from others that connect to the same port.
std::string make_token() {
    std::random_device random;
    std::string token(16, ' ');
    std::ranges::generate(token, [&] { return "0123456789abcdef"[random() % 16]; });
    return token;
}

/// @return a socket that listens on a free port of this machine, for nobody beyond it
SOCKET listen_here(u_short& port) {
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    auto* const any_address = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, any_address, size) != 0 || listen(listener, 3) != 0 ||
        getsockname(listener, any_address, &size) != 0) {
        return INVALID_SOCKET;
    }
    port = ntohs(address.sin_port);
    return listener;
}

/// @return the first connection that begins with the token
SOCKET accept_with(const std::string& token, SOCKET listener) {
    std::string sent(token.size(), ' ');
    for (;;) {
        const SOCKET connection = accept(listener, nullptr, nullptr);
        if (connection == INVALID_SOCKET ||
            (recv(connection, sent.data(), static_cast<int>(sent.size()), MSG_WAITALL) ==
                 static_cast<int>(sent.size()) &&
             sent == token)) {
            return connection;
        }
        closesocket(connection);
    }
}

void copy_input_to(SOCKET connection) {
    std::array<char, 65'536> buffer{};
    DWORD count = 0;
    while (
        ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer.data(), buffer.size(), &count, nullptr) &&
        count > 0 && send(connection, buffer.data(), static_cast<int>(count), 0) > 0) {
    }
    closesocket(connection);
}

/// Ends when the program below has ended, or nobody reads what it prints.
void copy_output_from(SOCKET connection) {
    std::array<char, 65'536> buffer{};
    int count = 0;
    DWORD written = 0;
    while ((count = recv(connection, buffer.data(), buffer.size(), 0)) > 0 &&
           WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), buffer.data(), static_cast<DWORD>(count),
                     &written, nullptr)) {
    }
}

/// Passes on what the program below wrote to its standard error.
/// @return its exit status, which stands in front of that
int finish_with(SOCKET connection) {
    std::string text;
    std::array<char, 4'096> buffer{};
    int count = 0;
    while ((count = recv(connection, buffer.data(), buffer.size(), 0)) > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    const auto end = std::min(text.find('\n'), text.size());
    const std::string errors = text.substr(std::min(end + 1, text.size()));
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), errors.data(), static_cast<DWORD>(errors.size()),
              &written, nullptr);
    constexpr int decimal = 10;
    return static_cast<int>(std::strtol(text.c_str(), nullptr, decimal));
}

/// Wine hands a program below no pipe, but both know the same sockets: one is for the program's
/// input, the next for its output, the last for its end.
int run_with_sockets() {
    WSADATA data{};
    u_short port = 0;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) {
        return 1;
    }
    const SOCKET listener = listen_here(port);
    const std::string token = make_token();
    if (listener == INVALID_SOCKET || !start_below(L"port:" + std::to_wstring(port) + L':' +
                                                   std::wstring(token.begin(), token.end()))) {
        return 1;
    }
    const SOCKET input = accept_with(token, listener);
    const SOCKET output = accept_with(token, listener);
    const SOCKET status = accept_with(token, listener);
    closesocket(listener);
    // May wait for input that never comes: the end of this process is its end.
    std::thread(copy_input_to, input).detach();
    copy_output_from(output);
    return finish_with(status);
}

}  // namespace

int main() {
    const bool has_pipe = GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE;
    return has_pipe ? run_with_sockets() : run_with_marker();
}
