/// Paths as texts in UTF-8, whatever the system's code page: on the command line and in messages.
#pragma once

#include <filesystem>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

inline std::filesystem::path path_of(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

/// @throws std::system_error on Windows for a path that has no UTF-8 form
inline std::string text_of(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// The same with "/" between folders, as addresses have it.
/// @throws as `text_of`
inline std::string generic_text_of(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

}  // namespace KIVRA::TSHARK::REPLAY
