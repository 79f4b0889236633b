/// Several captures as one stream of records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "replay/input/capture.h"
#include "replay/input/extraction/extraction_options.h"

namespace KIVRA::TSHARK::REPLAY {

/// A capture has come to its end without a record.
class no_records : public std::runtime_error {
  public:
    /// @param name what messages call the capture
    no_records(const std::string& name, const capture_content& content)
        : std::runtime_error(name + ": " + description_of(content)) {}
};

class capture_stream {
  public:
    /// Opens all of them.
    /// @param captures in the order of their records
    /// @param tshark the executable, for captures that are not read directly
    /// @param before_waiting called each time when nothing more can be read at once; may be none
    /// @throws capture_error when one can't be read
    capture_stream(std::span<const std::filesystem::path> captures,
                   const std::filesystem::path& tshark, const extraction_options& options = {},
                   const std::function<void()>& before_waiting = {});

    /// The next record; nothing at the end of the last capture.
    /// @throws capture_error when a capture can't be read on, no_records for one that has none; the
    ///     next call goes on with the one behind it. What `before_waiting` throws
    std::optional<trace_record> next();

    /// What the captures hold together, as far as they were read; without their protocols.
    capture_content content() const;

    /// The sum of the captures' sizes in bytes; 0 when one has none.
    std::uint64_t size() const;

    /// How many bytes have been read.
    std::uint64_t position() const;

  private:
    struct named_capture {
        std::string name;
        std::unique_ptr<capture> source;
    };

    void go_on();

    std::vector<named_capture> captures_;
    std::size_t current_ = 0;
    bool current_has_records_ = false;
    std::uint64_t size_of_finished_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
