/// Where a capture comes from, and what its readers need.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/console/input_stream.h"
#include "replay/input/extraction/extraction_options.h"

namespace KIVRA::TSHARK::REPLAY {

struct capture_source {
    /// What messages call it.
    std::string name;
    /// A file of a disk; empty for what is read from the stream alone.
    std::filesystem::path file = {};
    /// The file's, too.
    std::unique_ptr<PLATFORM::input_stream> stream = nullptr;
    /// The executable.
    std::filesystem::path tshark = {};
    extraction_options options = {};
};

}  // namespace KIVRA::TSHARK::REPLAY
