// Stands in for the command interpreter: notes what it was started with in "probe.json".
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>

int main() {
    STARTUPINFOA start_up{};
    GetStartupInfoA(&start_up);
    DWORD process = 0;
    const char* variable = std::getenv("KIVRA_PROBE");
    // The host may have left the number of a handle.
    DWORD flags = 0;
    const long long number = variable == nullptr ? 0 : std::strtoll(variable, nullptr, 10);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): so the system has it
    auto* const handle = reinterpret_cast<HANDLE>(number);
    const nlohmann::json probe{{"command_line", GetCommandLineA()},
                               {"directory", std::filesystem::current_path().string()},
                               {"start_up_size", start_up.cb},
                               {"start_up_flags", start_up.dwFlags},
                               {"processes_of_its_console", GetConsoleProcessList(&process, 1)},
                               {"has_a_window", GetConsoleWindow() != nullptr},
                               {"environment", variable == nullptr ? "" : variable},
                               {"has_the_handle", GetHandleInformation(handle, &flags) != FALSE}};
    std::ofstream("probe.json") << probe;
}
