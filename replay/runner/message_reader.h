/// What the messages of records are, for runs whose dissections nobody but the plug-in sees.
#pragma once

#include <filesystem>

#include "analysis/tshark/running_tshark.h"
#include "context/sink_context.h"
#include "replay/record/message_description.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// Asks a running tshark of its own.
class message_reader {
  public:
    /// @param tshark the executable; without one, records are described as far as they can be
    ///     without a dissection
    explicit message_reader(std::filesystem::path tshark);

    message_description read(const trace_record& record);

  private:
    sink_context context_;
    ANALYSIS::running_tshark source_;
};

}  // namespace KIVRA::TSHARK::REPLAY
