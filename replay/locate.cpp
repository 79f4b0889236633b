#include "replay/locate.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "platform/platform.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

namespace {

constexpr const char* plugin_name = "kivra-tshark-sink.so";

bool is_executable_file(const fs::path& file) {
    std::error_code unreachable;
    return fs::is_regular_file(file, unreachable) && access(file.c_str(), X_OK) == 0;
}

bool holds_tshark(const fs::path& directory) {
    return std::ranges::any_of(PLATFORM::tshark_executable_names(), [&](std::string_view name) {
        return is_executable_file(directory / name);
    });
}

}  // namespace

fs::path find_plugin(const fs::path& program_directory) {
    const std::array candidates{
        program_directory / plugin_name,
        (program_directory / "../lib/kivra" / plugin_name).lexically_normal()};
    for (const auto& candidate : candidates) {
        std::error_code unreachable;
        if (fs::exists(candidate, unreachable)) {
            return candidate;
        }
    }
    throw std::runtime_error("no plug-in: neither " + candidates[0].string() + " nor " +
                             candidates[1].string() + " exists; name it with --plugin");
}

fs::path find_tshark_directory(std::string_view folders) {
    while (!folders.empty()) {
        const auto end = std::min(folders.find(':'), folders.size());
        fs::path folder = folders.substr(0, end);
        if (!folder.empty() && holds_tshark(folder)) {
            return folder;
        }
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    throw std::runtime_error("no tshark on PATH; name its folder with --tshark-directory");
}

}  // namespace KIVRA::TSHARK::REPLAY
