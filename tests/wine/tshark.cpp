// A tshark.exe for Wine that hands its arguments and its output to a program of the system below.
#include <windows.h>

#include <array>
#include <filesystem>
#include <string>

namespace {

/// The arguments of this program, as they came.
std::wstring arguments() {
    const std::wstring line = GetCommandLineW();
    const bool quoted = line.starts_with(L'"');
    const auto end = quoted ? line.find(L'"', 1) + 1 : line.find(L' ');
    return end < line.size() ? line.substr(end) : L"";
}

/// A fresh file.
std::filesystem::path make_marker() {
    std::array<wchar_t, MAX_PATH> name{};
    GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"run", 0, name.data());
    return name.data();
}

}  // namespace

int main() {
    const std::filesystem::path marker = make_marker();
    std::wstring line =
        L"run_below \"" + marker.native() + L"\" \"" KIVRA_PROGRAM L"\"" + arguments();
    STARTUPINFOW start_up{};
    start_up.cb = sizeof start_up;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(KIVRA_RUN_BELOW, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &start_up, &process)) {
        std::filesystem::remove(marker);
        return 1;
    }
    // Wine gives no handle of a program of the system below, nor anything else to wait for.
    while (GetFileAttributesW(marker.c_str()) != INVALID_FILE_ATTRIBUTES) {
        Sleep(5);
    }
    return 0;
}
