#include "replay/record/record_format.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "replay/record/rrc_channels.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::string_view nas = "nas-eps";
constexpr std::string_view ip_packet = "ip";
constexpr std::string_view any_rrc = "lte_rrc";

/// Without what spellings differ in: case and separators.
std::string simplified(std::string_view format) {
    std::string text(format);
    std::ranges::transform(text, text.begin(), [](unsigned char c) {
        return std::isalnum(c) != 0 ? static_cast<char>(std::tolower(c)) : '_';
    });
    return text;
}

}  // namespace

bool is_analysed(std::string_view format) {
    return format == nas || format == ip_packet || format.find(any_rrc) != std::string_view::npos;
}

std::string_view nearest_analysed(std::string_view format) {
    const std::string text = simplified(format);
    std::string_view nearest = text.starts_with(simplified(nas)) ? nas : "";
    for (const auto& channel : rrc_channels) {
        if (text.starts_with(simplified(channel.dissector)) &&
            channel.dissector.size() > nearest.size()) {
            nearest = channel.dissector;
        }
    }
    return nearest;
}

}  // namespace KIVRA::TSHARK::REPLAY
