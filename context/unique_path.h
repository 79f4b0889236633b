/// Names for working files that nothing in the working directory bears yet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace KIVRA::TSHARK {

/// The wall clock, in nanoseconds since 1970-01-01, in steps of 100.
std::int64_t wall_clock_nanoseconds();

/// A path in the working directory at which nothing exists: the prefix, directly followed by the
/// time in nanoseconds and the number of the attempt (from 1), a dot and the extension, such as
/// tshark17000000000000000001.json. The file is not created.
/// @param clock read anew for every attempt
/// @throws std::filesystem::filesystem_error "current_path()" or "exists"
std::filesystem::path unique_path(std::string_view prefix, std::string_view extension,
                                  std::int64_t (*clock)() = wall_clock_nanoseconds);

}  // namespace KIVRA::TSHARK
