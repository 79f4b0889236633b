/// Why a record failed.
#pragma once

#include <string>

namespace KIVRA::TSHARK::REPLAY {

enum class failure_kind {
    /// The analysis failed; the text is the plug-in's last error, whether it was loaded or its work
    /// was done in process.
    analysis,
    /// The packet does not say which dissector reads it.
    malformed_packet,
    /// The capture has only the beginning of the packet.
    truncated_packet,
    /// tshark ended before it came to the record.
    tshark_ended,
};

struct record_failure {
    failure_kind kind = failure_kind::analysis;
    std::string text = {};

    bool operator==(const record_failure&) const = default;
};

}  // namespace KIVRA::TSHARK::REPLAY
