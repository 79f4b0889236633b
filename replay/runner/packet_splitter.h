/// tshark's JSON output taken apart while it arrives: one text a packet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "analysis/json_nesting.h"

namespace KIVRA::TSHARK::REPLAY {

/// A packet of tshark's output.
struct split_packet {
    /// Which packet of the capture it is, from 1.
    std::uint64_t number = 0;
    /// What tshark would print, had it read a capture with this packet alone.
    std::string text;
};

/// Holds one packet at a time.
class packet_splitter {
  public:
    /// Where the output comes from: fills the place, and returns how many bytes there were; 0 at
    /// the end.
    using source = std::function<std::size_t(std::span<char> place)>;

    explicit packet_splitter(source output) : output_(std::move(output)) {}

    /// The next packet; nothing at the output's end.
    /// @throws std::runtime_error when the output ends before the packets do, or holds something
    ///     else than packets
    std::optional<split_packet> next();

  private:
    bool read_on();

    source output_;
    std::string piece_;
    std::size_t position_ = 0;
    ANALYSIS::json_nesting nesting_;
    bool began_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
