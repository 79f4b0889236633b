#include "replay/find_tshark.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <system_error>

#include "platform/console/console.h"
#include "platform/platform.h"
#include "sink/tshark_discovery.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

namespace {

bool holds_tshark(const fs::path& directory) {
    return std::ranges::any_of(PLATFORM::tshark_executable_names(), [&](std::string_view name) {
        return PLATFORM::is_executable_file(directory / name);
    });
}

/// Empty for a text that is no path of this system.
fs::path folder_of(std::string_view text) {
    try {
        return PLATFORM::path_from_narrow(text);
    } catch (const std::system_error&) {
        return {};
    }
}

/// As the plug-in searches for it, which finds it where Wireshark's installer puts it.
fs::path find_installation(const std::string& folders) {
    try {
        return SINK::discover_tshark_directory(folders);
    } catch (const std::runtime_error&) {
        return {};
    }
}

}  // namespace

fs::path find_tshark_directory(std::string_view folders) {
    const auto searched = std::string(folders);
    while (!folders.empty()) {
        const auto end = std::min(folders.find(PLATFORM::path_separator()), folders.size());
        auto folder = folder_of(folders.substr(0, end));
        if (!folder.empty() && holds_tshark(folder)) {
            return folder;
        }
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    if (auto installed = find_installation(searched); holds_tshark(installed)) {
        return installed;
    }
    throw std::runtime_error("no tshark on PATH; name its folder with --tshark-directory");
}

found_tshark find_tshark(const options& wanted) {
    const auto directory = wanted.tshark_directory.empty()
                               ? find_tshark_directory(PLATFORM::path_variable().value_or(""))
                               : wanted.tshark_directory;
    try {
        return {directory, SINK::tshark_executable(directory)};
    } catch (const std::runtime_error&) {
        if (wanted.plugin.empty()) {
            throw;
        }
        return {directory, directory / "tshark"};
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
