#include "analysis/tshark/packet_splitter.h"

#include <charconv>
#include <utility>

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

/// The packets stand in one array.
constexpr std::size_t array_depth = 1;

/// Whether the character may stand in the array but in no packet.
bool is_between_packets(char c, std::size_t depth) {
    return std::string_view(" \t\r\n").find(c) != std::string_view::npos ||
           (depth == array_depth && c == ',');
}

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
        throw not_a_packet();
    }
    return number;
}

}  // namespace

void packet_splitter::add(std::string_view output) {
    buffer_ = output;
    position_ = 0;
}

std::optional<split_packet> packet_splitter::next() {
    while (position_ < buffer_.size()) {
        const std::size_t depth = nesting_.depth();
        const char c = buffer_[position_];
        if (depth == 0 && began_ && allowed_ == behind_packets::text) {
            break;
        }
        if (depth <= array_depth) {
            const bool opens = depth == 0 ? c == '[' && !began_ : c == '{';
            const bool closes = depth == array_depth && c == ']';
            if (!opens && !closes && !is_between_packets(c, depth)) {
                throw not_a_packet();
            }
            began_ = began_ || opens;
            nesting_.take(c);
            ++position_;
            if (depth == array_depth && opens) {
                packet_ = "[\n  {";
            }
            continue;
        }
        const std::size_t begin = position_;
        while (position_ < buffer_.size() && nesting_.depth() > array_depth) {
            nesting_.take(buffer_[position_++]);
        }
        packet_.append(buffer_, begin, position_ - begin);
        if (nesting_.depth() == array_depth) {
            return finish();
        }
    }
    return std::nullopt;
}

std::string_view packet_splitter::text_behind() const {
    return std::string_view(buffer_).substr(position_);
}

split_packet packet_splitter::finish() {
    const std::uint64_t number = frame_number(packet_);
    packet_ += "\n]\n";
    return {number, std::exchange(packet_, {})};
}

}  // namespace KIVRA::TSHARK::ANALYSIS
