/// Captures whose packets are records as they stand, printed by tshark byte by byte: for systems
/// without libpcap, and for files that it can't open, such as compressed ones.
#pragma once

#include <optional>

#include "replay/input/capture.h"
#include "replay/input/extraction/capture_source.h"
#include "replay/input/extraction/extracting_tshark.h"
#include "replay/input/extraction/printed_frame.h"

namespace KIVRA::TSHARK::REPLAY {

class printed_capture final : public capture {
  public:
    explicit printed_capture(capture_source source) : source_(std::move(source)) {}

    std::optional<trace_record> next() override;
    capture_content content() const override { return {.packets = packets_}; }
    std::uint64_t size() const override { return 0; }
    std::uint64_t position() const override { return 0; }

  private:
    capture_source source_;
    std::optional<extracting_tshark> tshark_;
    /// The one that was given last, whose bytes the caller may use until the next.
    printed_frame current_;
    std::uint64_t packets_ = 0;
};

/// Whether the packets are records as they stand, by what tshark prints of them; nothing where it
/// prints none.
/// @throws capture_error when tshark can't be started
std::optional<bool> packets_are_records(const capture_source& source);

}  // namespace KIVRA::TSHARK::REPLAY
