/// Why a record failed.
#pragma once

#include <cstddef>
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
};

struct record_failure {
    failure_kind kind = failure_kind::analysis;
    std::string text = {};

    bool operator==(const record_failure&) const = default;
};

/// Of a packet of which the capture has fewer bytes than it had.
inline record_failure cut_short(std::size_t captured, std::size_t original) {
    return {failure_kind::truncated_packet,
            "cut short by the snapshot length: " + std::to_string(captured) + " of " +
                std::to_string(original) + " bytes captured"};
}

}  // namespace KIVRA::TSHARK::REPLAY
