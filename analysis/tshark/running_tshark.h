/// Dissections by one tshark that goes on running. A record that it can't dissect, since it ended
/// or could not be started, is dissected by a tshark of its own instead.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "analysis/tshark/dissection_source.h"
#include "analysis/tshark/single_tshark.h"
#include "analysis/tshark/tshark_session.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// tshark starts with the first record and ends with the object; after it has ended by itself it
/// starts again with the next record. Its output goes through a pipe: there are no working files,
/// but for those of a record that has a tshark of its own.
class running_tshark final : public dissection_source {
  public:
    /// Sends a record ahead, so that tshark works on it meanwhile. The records that `dissect` is
    /// called for must be the same, in the same order.
    void send_ahead(const sink_context& context, std::string packet);

    /// Logs when the record gets a tshark of its own because the running one has ended.
    /// @throws as `single_tshark` for such a record, and what the handler throws
    void dissect(const sink_context& context, const std::string& packet,
                 const output_handler& handler) override;

  private:
    void add(std::string packet);
    std::optional<std::string> receive(const sink_context& context);
    void start(const sink_context& context);

    single_tshark single_;
    std::optional<tshark_session> session_;
    /// Sent and not received.
    std::deque<std::string> packets_;
};

}  // namespace KIVRA::TSHARK::ANALYSIS
