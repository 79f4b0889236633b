/// What a capture's packets say about who is to read them.
#pragma once

#include <cstdint>
#include <span>

#include "replay/input/link_types.h"

namespace KIVRA::TSHARK::REPLAY {

class packet_verdict {
  public:
    void look_at(const link_type& type, std::span<const std::uint8_t> packet);

    /// Whether the packets seen so far are records as they stand: exported PDUs that name
    /// dissectors of LTE, or raw IP that carries no signalling. Where nothing of LTE is named,
    /// other dissectors may have it inside, as that of S1AP.
    bool are_records() const { return !needs_tshark_ && (familiar_ || !strange_); }

  private:
    void look_at_name(std::span<const std::uint8_t> packet);

    bool needs_tshark_ = false;
    /// There are packets of LTE's dissectors, or of other ones.
    bool familiar_ = false;
    bool strange_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
