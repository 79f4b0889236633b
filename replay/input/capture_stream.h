/// Several captures as one stream of records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include "replay/input/capture.h"
#include "replay/input/working_file.h"

namespace KIVRA::TSHARK::REPLAY {

class capture_stream {
  public:
    /// Opens all of them.
    /// @param captures in the order of their records
    /// @param copies of the captures, to be read in their place; none, or one each
    /// @throws std::runtime_error when one can't be read
    explicit capture_stream(std::span<const std::filesystem::path> captures,
                            std::span<const working_file> copies = {});

    /// The next record; nothing at the end of the last capture.
    /// @throws std::runtime_error when a capture can't be read on; the next call goes on with the
    ///     one behind it
    std::optional<trace_record> next();

    /// The sum of the captures' sizes in bytes; 0 when one has none.
    std::uint64_t size() const;

    /// How many bytes have been read.
    std::uint64_t position() const;

  private:
    std::vector<capture> captures_;
    std::size_t current_ = 0;
    std::uint64_t size_of_finished_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
