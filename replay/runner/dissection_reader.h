/// What dissections tell beside the result documents: what messages are, and settings in the units
/// of 3GPP.
#pragma once

#include <nlohmann/json.hpp>

#include "replay/record/outcome.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// For the dissections of a trace, in the order of its records.
class dissection_reader {
  public:
    /// @param packet of tshark's output for the record
    void read(const trace_record& record, const nlohmann::json& packet, outcome& result);

  private:
    /// Some values of NAS mean what the radio access says, which stands in RRC messages.
    radio_access access_ = radio_access::unknown;
};

}  // namespace KIVRA::TSHARK::REPLAY
