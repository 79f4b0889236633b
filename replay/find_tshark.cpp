#include "replay/find_tshark.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "platform/console/console.h"
#include "platform/platform.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

namespace {

bool holds_tshark(const fs::path& directory) {
    return std::ranges::any_of(PLATFORM::tshark_executable_names(), [&](std::string_view name) {
        return PLATFORM::is_executable_file(directory / name);
    });
}

}  // namespace

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
