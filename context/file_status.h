/// File-system queries and removals whose failures name the operation in the same words on every
/// platform. No state.
#pragma once

#include <filesystem>

namespace KIVRA::TSHARK {

/// Whether anything exists at the path.
/// @throws std::filesystem::filesystem_error "exists" when that can't be told
bool entry_exists(const std::filesystem::path& path);

/// Removes the single entry at the path, on Windows even a read-only one; no error when there is
/// none.
/// @throws std::filesystem::filesystem_error "remove"
void remove_entry(const std::filesystem::path& path);

/// @throws std::filesystem::filesystem_error "current_path()"
std::filesystem::path working_directory();

}  // namespace KIVRA::TSHARK
