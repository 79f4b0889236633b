/// The reader that a capture needs.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "replay/input/capture.h"
#include "replay/input/extraction/extraction_options.h"

namespace KIVRA::TSHARK::REPLAY {

/// Opens a capture: read directly where its packets are records as they stand and nothing was said
/// about how tshark should read it, else by tshark.
/// @param file "-" for the standard input
/// @param tshark the executable
/// @param before_waiting called each time when nothing more can be read at once; may be none
/// @throws capture_error when it can't be opened, and what the callback throws
std::unique_ptr<capture> open_capture(const std::filesystem::path& file,
                                      const std::filesystem::path& tshark,
                                      const extraction_options& options,
                                      std::function<void()> before_waiting);

}  // namespace KIVRA::TSHARK::REPLAY
