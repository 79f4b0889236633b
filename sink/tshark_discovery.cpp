#include "sink/tshark_discovery.h"

#include <algorithm>
#include <locale>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "context/file_status.h"
#include "platform/platform.h"

namespace KIVRA::TSHARK::SINK {

namespace {

namespace fs = std::filesystem;

constexpr auto last_candidate = R"(C:\Program Files)";
constexpr auto tshark_missing = "tshark not found from path or default installation location";
constexpr auto installation_missing =
    "tshark installation not found from path or default installation location";

bool is_searchable(const fs::path& candidate) {
    std::error_code error;
    const fs::file_status status = PLATFORM::file_status(candidate, error);
    if (status.type() == fs::file_type::none) {
        throw fs::filesystem_error("status", candidate, error);
    }
    return fs::is_directory(status);
}

bool names_an_installation(const fs::path& entry) {
    constexpr std::u8string_view beginning = u8"wireshark";
    std::u8string name = entry.filename().u8string().substr(0, beginning.size());
    std::ranges::transform(name, name.begin(), [](char8_t c) {
        return static_cast<char8_t>(std::tolower(static_cast<char>(c), std::locale::classic()));
    });
    return name == beginning;
}

/// The installation in a folder, in the order that the file system delivers; empty for none.
fs::path find_installation(const fs::path& directory) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); !error && entry != end(entry);
         entry.increment(error)) {
        if (names_an_installation(entry->path())) {
            return entry->path();
        }
    }
    if (error) {
        throw fs::filesystem_error("directory_iterator::directory_iterator", directory, error);
    }
    return {};
}

}  // namespace

std::vector<std::string> candidate_directories(const std::string& path_variable) {
    std::vector<std::string> candidates;
    for (std::size_t begin = 0; begin < path_variable.size();) {
        const std::size_t end = std::min(path_variable.find(';', begin), path_variable.size());
        if (end != begin) {
            candidates.push_back(path_variable.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    candidates.emplace_back(last_candidate);
    return candidates;
}

fs::path discover_tshark_directory(const std::optional<std::string>& path_variable) {
    if (!path_variable) {
        return {};
    }
    for (const auto& folder : candidate_directories(*path_variable)) {
        const fs::path candidate = PLATFORM::path_from_narrow(folder);
        if (!is_searchable(candidate)) {
            continue;
        }
        if (fs::path installation = find_installation(candidate); !installation.empty()) {
            return installation;
        }
    }
    throw std::runtime_error(installation_missing);
}

fs::path tshark_executable(const fs::path& directory) {
    if (!directory.empty()) {
        for (const std::string_view name : PLATFORM::tshark_executable_names()) {
            if (fs::path executable = directory / name; entry_exists(executable)) {
                return executable;
            }
        }
    }
    throw std::runtime_error(tshark_missing);
}

}  // namespace KIVRA::TSHARK::SINK
