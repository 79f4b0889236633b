/// Captures that tshark reads: whatever it can open, with messages in whatever carries them.
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "replay/input/capture.h"
#include "replay/input/extraction/capture_source.h"
#include "replay/input/extraction/extracted_packet.h"
#include "replay/input/extraction/extracting_tshark.h"
#include "replay/input/extraction/nas_inside_rrc.h"

namespace KIVRA::TSHARK::REPLAY {

/// Each outermost RRC or NAS message is a record, and so is each router advertisement. tshark
/// starts with the first one that is asked for.
class extracted_capture final : public capture {
  public:
    explicit extracted_capture(capture_source source) : source_(std::move(source)) {}

    std::optional<trace_record> next() override;
    capture_content content() const override;
    std::uint64_t size() const override { return 0; }
    std::uint64_t position() const override { return 0; }

  private:
    void start(extraction_depth depth);
    extraction_state read_packet();
    extracted_packet packet_in(const std::string& text) const;
    void add(extracted_packet&& packet);
    void explain_user_link_type() const;
    trace_record handed_out(extracted_record record);

    capture_source source_;
    extraction_depth depth_ = extraction_depth::everything;
    std::optional<extracting_tshark> process_;
    nas_inside_rrc records_;
    /// The one that was given last, whose bytes the caller may use until the next.
    extracted_record current_;
    std::uint64_t last_packet_ = 0;
    std::uint64_t encrypted_rrc_ = 0;
    std::optional<int> user_link_type_;
    bool found_records_ = false;
    bool ended_ = false;
    std::exception_ptr failure_;
};

}  // namespace KIVRA::TSHARK::REPLAY
