/// A capture as a sequence of records, whatever reads it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "replay/record/capture_content.h"
#include "replay/record/capture_error.h"
#include "replay/record/path_text.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// What messages call a capture.
inline std::string name_of(const std::filesystem::path& file) {
    return file == "-" ? "standard input" : text_of(file);
}

class capture {
  public:
    capture() = default;
    virtual ~capture() = default;
    capture(const capture&) = delete;
    capture& operator=(const capture&) = delete;

    /// The next record; nothing at the end of the capture.
    /// @throws capture_error when the capture can't be read on, and what the callback throws that
    ///     is called before waiting
    virtual std::optional<trace_record> next() = 0;

    /// What the capture holds; whole once `next` has given nothing.
    virtual capture_content content() const = 0;

    /// The size in bytes; 0 where nobody knows, as of a pipe.
    virtual std::uint64_t size() const = 0;

    /// How many bytes have been read, some of them ahead; 0 where the size is.
    virtual std::uint64_t position() const = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
