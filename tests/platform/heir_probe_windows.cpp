// Leaves its pipes to a program that neither reads, prints nor ends, says which one, and ends.
#include <windows.h>

#include <iostream>

int main() {
    wchar_t line[] = L"heir stay";
    STARTUPINFOW start_up{};
    start_up.cb = sizeof start_up;
    // It has the handles, but none of them as its streams.
    start_up.dwFlags = STARTF_USESTDHANDLES;
    PROCESS_INFORMATION process{};
    constexpr BOOL inherit_handles = TRUE;
    if (CreateProcessW(KIVRA_PIPE_PROBE, line, nullptr, nullptr, inherit_handles, DETACHED_PROCESS,
                       nullptr, nullptr, &start_up, &process) == FALSE) {
        return 1;
    }
    std::cout << process.dwProcessId << std::flush;
}
