/// Files that can't be written.
#pragma once

#include <stdexcept>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// "can't write FILE: reason", to be thrown.
/// @param name what the message calls the file
/// @param error of errno; without a reason when it is 0
std::runtime_error write_error(std::string_view name, int error);

}  // namespace KIVRA::TSHARK::REPLAY
