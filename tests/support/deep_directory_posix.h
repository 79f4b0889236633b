/// A working directory whose path leaves no room for a name below it.
#pragma once

#include <filesystem>
#include <string>

namespace KIVRA::TSHARK::TESTING {

/// Makes such a directory below the working directory and enters it.
inline void enter_deep_directory() {
    namespace fs = std::filesystem;
    constexpr std::size_t longest_path = 4080;
    const std::string piece(200, 'd');
    while (fs::current_path().string().size() + piece.size() + 2 < longest_path) {
        fs::create_directory(piece);
        fs::current_path(piece);
    }
    const std::string rest(longest_path - fs::current_path().string().size() - 1, 'd');
    fs::create_directory(rest);
    fs::current_path(rest);
}

}  // namespace KIVRA::TSHARK::TESTING
