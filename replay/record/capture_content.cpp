#include "replay/record/capture_content.h"

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// With a comma before every three digits.
std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    constexpr std::size_t group = 3;
    for (std::size_t place = digits.size(); place > group; place -= group) {
        digits.insert(place - group, 1, ',');
    }
    return digits;
}

}  // namespace

std::string description_of(const capture_content& content) {
    std::string text = grouped(content.packets) + (content.packets == 1 ? " packet" : " packets");
    std::string_view separator = ": ";
    for (const auto& [name, packets] : content.protocols) {
        text.append(separator).append(name).append(1, ' ').append(grouped(packets));
        separator = ", ";
    }
    if (content.encrypted_rrc != 0) {
        text += "; encrypted RRC in " + grouped(content.encrypted_rrc);
    }
    return text + "; no LTE RRC or NAS";
}

}  // namespace KIVRA::TSHARK::REPLAY
