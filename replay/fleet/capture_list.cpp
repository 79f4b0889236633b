#include "replay/fleet/capture_list.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> suffixes_of_captures{".pcap", ".pcapng", ".cap",
                                                               ".ntar", ".snoop",  ".erf"};
constexpr std::array<std::string_view, 3> suffixes_of_compression{".gz", ".zst", ".lz4"};

/// In small letters.
std::string suffix_of(const fs::path& file) {
    std::string suffix = text_of(file.extension());
    std::ranges::transform(suffix, suffix.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return suffix;
}

std::vector<listed_capture> all_captures_in(const fs::path& folder, bool recursive) {
    std::vector<listed_capture> found;
    for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
        if (!recursive || is_hidden(entry->path().filename())) {
            entry.disable_recursion_pending();
        }
        std::error_code unreachable;
        if (has_name_of_capture(entry->path().filename()) && entry->is_regular_file(unreachable)) {
            found.push_back({entry->path(), entry->path().lexically_relative(folder)});
        }
    }
    std::ranges::sort(found, {}, &listed_capture::file);
    return found;
}

std::vector<listed_capture> captures_in(const fs::path& folder, bool recursive) {
    std::vector<listed_capture> found;
    try {
        found = all_captures_in(folder, recursive);
    } catch (const fs::filesystem_error& error) {
        throw std::runtime_error("can't read " + text_of(error.path1()) + ": " +
                                 error.code().message());
    }
    if (found.empty()) {
        throw std::runtime_error(text_of(folder) + " has no captures in it" +
                                 (recursive ? "" : " (--recursive looks into its folders, too)"));
    }
    return found;
}

}  // namespace

bool has_name_of_capture(const fs::path& name) {
    fs::path file = name;
    if (std::ranges::count(suffixes_of_compression, suffix_of(file)) != 0) {
        file.replace_extension();
    }
    return !is_hidden(name) && std::ranges::count(suffixes_of_captures, suffix_of(file)) != 0;
}

bool is_hidden(const fs::path& name) {
    return text_of(name).starts_with('.');
}

std::vector<listed_capture> list_captures(const std::vector<fs::path>& places, bool recursive) {
    std::vector<listed_capture> captures;
    for (const auto& place : places) {
        std::error_code unreachable;
        if (fs::is_directory(place, unreachable)) {
            const auto found = captures_in(place, recursive);
            captures.insert(captures.end(), found.begin(), found.end());
        } else {
            captures.push_back({place, place.filename()});
        }
    }
    return captures;
}

}  // namespace KIVRA::TSHARK::REPLAY
