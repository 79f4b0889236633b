/// Captures that can't be read.
#pragma once

#include <stdexcept>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// A capture can't be opened or read on.
class capture_error : public std::runtime_error {
  public:
    /// @param name what messages call the capture
    capture_error(const std::string& name, const std::string& reason)
        : std::runtime_error("can't read " + name + ": " + reason) {}
};

}  // namespace KIVRA::TSHARK::REPLAY
