/// Files and folders into a list of captures.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

/// Whether a file in a folder is called as captures are: with the suffix pcap, pcapng, cap, ntar,
/// snoop or erf in any case, with gz, zst or lz4 behind it where it is compressed, and not hidden.
bool has_name_of_capture(const std::filesystem::path& name);

/// Whether the name begins with a dot, as those of files that programs are still copying.
bool is_hidden(const std::filesystem::path& name);

/// Why a table can't name the file: a table is UTF-8, and the file's path is not. Nothing for
/// others.
std::optional<std::string> obstacle_to_naming(const std::filesystem::path& file);

struct listed_capture {
    std::filesystem::path file;
    /// Its path below the folder that it was found in; of a file given by name, the file's name.
    std::filesystem::path name;
};

/// Captures in the order given; those of a folder sorted by their paths. Files that are given by
/// name are taken whatever they are, of a folder those with a capture's name.
/// @param recursive whether to look into folders within folders
/// @param leave_out told of each folder within a folder that can't be read, and of each capture
///     that a table can't name
/// @throws std::runtime_error for a folder without captures, or one that can't be read
std::vector<listed_capture> list_captures(
    const std::vector<std::filesystem::path>& places, bool recursive,
    const std::function<void(const std::string& why)>& leave_out);

}  // namespace KIVRA::TSHARK::REPLAY
