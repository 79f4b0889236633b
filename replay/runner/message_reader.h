/// The dissections of records that nobody but the plug-in sees otherwise.
#pragma once

#include <filesystem>

#include "analysis/tshark/running_tshark.h"
#include "context/sink_context.h"
#include "replay/record/outcome.h"
#include "replay/record/record.h"
#include "replay/runner/dissection_reader.h"

namespace KIVRA::TSHARK::REPLAY {

/// Asks a running tshark of its own.
class message_reader {
  public:
    /// @param tshark the executable; without one, records are described as far as they can be
    ///     without a dissection
    explicit message_reader(std::filesystem::path tshark);

    /// Describes the record, and adds what its dissection tells.
    void read(const trace_record& record, outcome& result);

  private:
    dissection_reader reader_;
    sink_context context_;
    ANALYSIS::running_tshark source_;
};

}  // namespace KIVRA::TSHARK::REPLAY
