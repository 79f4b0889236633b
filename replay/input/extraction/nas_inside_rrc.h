/// NAS messages that travel inside RRC messages, as records of their own. Tools that read a modem's
/// diagnostics often log the NAS message beside the RRC message; then it is not repeated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "replay/record/record_failure.h"

namespace KIVRA::TSHARK::REPLAY {

struct extracted_record {
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    std::string format = {};
    std::vector<std::uint8_t> payload = {};
    bool is_inside_rrc = false;
    std::optional<record_failure> failure = {};
};

/// A queue that records leave in their order. One that stood inside an RRC message is dropped if
/// the same bytes also come as a record of their own within a second of time stamps, before or
/// after; so it, and what is behind it, waits until the time stamps have gone that far or back, or
/// until more than a thousand records wait.
class nas_inside_rrc {
  public:
    void add(extracted_record record);

    /// There will be no more records that could make a difference.
    void let_go();

    /// The next record that is decided; nothing when there is none.
    std::optional<extracted_record> next();

    bool empty() const { return waiting_.empty(); }

  private:
    struct own_record {
        std::uint64_t timestamp = 0;
        std::vector<std::uint8_t> payload;
    };

    bool is_decided(const extracted_record& record) const;
    bool stands_alone(const extracted_record& record) const;

    std::deque<extracted_record> waiting_;
    /// NAS messages that came as records of their own, of the last second.
    std::deque<own_record> own_;
    /// Of the record that was added last. Clocks are set back, too.
    std::uint64_t latest_ = 0;
    bool lets_go_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
