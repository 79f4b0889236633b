/// The JSON output of a running tshark taken apart while it arrives: one text a packet.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "analysis/tshark/json_nesting.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// A packet of tshark's output.
struct split_packet {
    /// Which packet of the capture it is, from 1.
    std::uint64_t number = 0;
    /// What tshark prints when it reads a capture with this packet alone.
    std::string text;
};

/// The output is not the array of packets that tshark prints.
class not_a_packet : public std::runtime_error {
  public:
    not_a_packet() : std::runtime_error("output of tshark holds what is not a packet") {}
};

/// What may stand behind the array of packets, besides blanks.
enum class behind_packets { nothing, text };

class packet_splitter {
  public:
    explicit packet_splitter(behind_packets allowed = behind_packets::nothing)
        : allowed_(allowed) {}

    /// Takes more of the output, cut anywhere. Everything taken before must have been split: `next`
    /// has given nothing.
    void add(std::string_view output);

    /// The next whole packet of what was taken; nothing when the rest of it is still to come.
    /// @throws not_a_packet, also from every later call
    std::optional<split_packet> next();

    /// The text behind the array, of what was taken last, once `next` has given nothing; nothing
    /// where none is allowed.
    std::string_view text_behind() const;

  private:
    split_packet finish();

    std::string buffer_;
    std::size_t position_ = 0;
    /// The packet that has begun, as far as it was taken.
    std::string packet_;
    json_nesting nesting_;
    bool began_ = false;
    behind_packets allowed_;
};

}  // namespace KIVRA::TSHARK::ANALYSIS
