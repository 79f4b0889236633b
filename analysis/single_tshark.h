/// A tshark for each record: it reads a capture file of that record alone, and prints into a file.
#pragma once

#include <filesystem>
#include <string>

#include "analysis/dissection_source.h"

namespace KIVRA::TSHARK::ANALYSIS {

class single_tshark final : public dissection_source {
  public:
    /// The capture file and the output (the context's `tshark_output`) stand in the working
    /// directory until the handler has returned, and are gone when this returns or throws; a file
    /// that can't be deleted ends the process.
    /// @throws std::filesystem::filesystem_error before any file is touched; std::runtime_error
    ///     "cannot open file" when tshark left no output
    void dissect(const sink_context& context, const std::string& packet,
                 const output_handler& handler) override;
};

/// The whole content of a file.
/// @throws std::runtime_error "cannot open file"
std::string read_output(const std::filesystem::path& file);

}  // namespace KIVRA::TSHARK::ANALYSIS
