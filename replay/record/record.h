/// A record: one packet of a capture, as hosts hand it to the plug-in.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "replay/record/record_failure.h"

namespace KIVRA::TSHARK::REPLAY {

struct trace_record {
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// The dissector's name, "ip" for an IP packet; empty when the packet names none.
    std::string format = {};
    /// The message; the capture's, until the next record is read.
    std::span<const std::uint8_t> payload = {};
    /// Whether a NAS message within an RRC message is a record, too.
    bool carried_nas_is_record = false;
    /// Why the record can't be run, when it can't.
    std::optional<record_failure> failure = {};
};

}  // namespace KIVRA::TSHARK::REPLAY
