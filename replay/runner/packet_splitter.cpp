#include "replay/runner/packet_splitter.h"

#include <charconv>
#include <stdexcept>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::size_t piece_size = 65'536;

/// The packets stand in one array.
constexpr std::size_t packet_depth = 1;

std::uint64_t frame_number(std::string_view packet) {
    // A quotation mark within a text is escaped: these can only be the names and marks of a member.
    constexpr std::string_view member = R"("frame.number": ")";
    std::uint64_t number = 0;
    const auto found = packet.find(member);
    if (found != std::string_view::npos) {
        const auto digits = packet.substr(found + member.size());
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    }
    if (number == 0) {
        throw std::runtime_error("output of tshark has a packet without a number");
    }
    return number;
}

}  // namespace

std::optional<split_packet> packet_splitter::next() {
    std::string packet;
    while (position_ < piece_.size() || read_on()) {
        const std::size_t begin = position_;
        nesting_.take(piece_[position_++]);
        began_ = began_ || nesting_.depth() != 0;
        if (nesting_.depth() <= packet_depth && packet.empty()) {
            continue;
        }
        while (position_ < piece_.size() && nesting_.depth() > packet_depth) {
            nesting_.take(piece_[position_++]);
        }
        packet.append(piece_, begin, position_ - begin);
        if (nesting_.depth() == packet_depth) {
            return split_packet{frame_number(packet), "[\n  " + packet + "\n]\n"};
        }
    }
    if (!began_ || nesting_.depth() != 0) {
        throw std::runtime_error("output of tshark ended before it came to this record");
    }
    return std::nullopt;
}

bool packet_splitter::read_on() {
    piece_.resize(piece_size);
    piece_.resize(output_(piece_));
    position_ = 0;
    return !piece_.empty();
}

}  // namespace KIVRA::TSHARK::REPLAY
