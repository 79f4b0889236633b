/// Where the dissection of a record comes from: a tshark for this record, or one that runs for
/// many.
#pragma once

#include <functional>
#include <string>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// Gets tshark's JSON output for one record.
using output_handler = std::function<void(std::string output)>;

class dissection_source {
  public:
    dissection_source() = default;
    virtual ~dissection_source() = default;
    dissection_source(const dissection_source&) = delete;
    dissection_source& operator=(const dissection_source&) = delete;

    /// Has tshark dissect a record and calls the handler with what it prints, once; not at all when
    /// tshark can't be started, which is logged. Blocks until the handler has returned.
    /// @param packet the record as a block of a capture file, see `pcapng_packet`
    /// @throws what stands in the way of a dissection, and what the handler throws
    virtual void dissect(const sink_context& context, const std::string& packet,
                         const output_handler& handler) = 0;
};

}  // namespace KIVRA::TSHARK::ANALYSIS
