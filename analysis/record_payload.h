/// The bytes of a trace record.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>

#include <kivra/tshark_sink.h>

namespace KIVRA::TSHARK::ANALYSIS {

/// @throws std::invalid_argument for a record that has a size but no data
inline std::span<const std::uint8_t> record_payload(const kivra_trace_chunk& chunk) {
    if (chunk.data == nullptr && chunk.size != 0) {
        throw std::invalid_argument("record has a size but no data");
    }
    return {chunk.data, chunk.size};
}

}  // namespace KIVRA::TSHARK::ANALYSIS
