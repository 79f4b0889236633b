#include "replay/find_programs.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "platform/platform.h"
#include "platform/program.h"
#include "platform/shared_library.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

namespace {

bool holds_tshark(const fs::path& directory) {
    return std::ranges::any_of(PLATFORM::tshark_executable_names(), [&](std::string_view name) {
        return PLATFORM::is_executable_file(directory / name);
    });
}

}  // namespace

fs::path find_plugin(const fs::path& program_directory) {
    const std::string plugin_name =
        std::string("kivra-tshark-sink") + PLATFORM::shared_library_extension;
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
