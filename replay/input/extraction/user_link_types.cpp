#include "replay/input/extraction/user_link_types.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct likely_content {
    int link_type;
    /// Names of Wireshark's dissectors.
    std::string_view protocols;
};

/// What srsRAN and sniffers write.
constexpr std::array<likely_content, 4> likely_contents{{
    {147, "mac-lte-framed"},
    {148, "nas-eps"},
    {149,
     "mac-lte-framed, or udp with --tshark-option=--enable-heuristic "
     "--tshark-option=mac_lte_udp"},
    {150, "s1ap"},
}};

}  // namespace

std::string advice_on_user_link_type(int number) {
    const auto text = std::to_string(number);
    std::string advice = "link type " + text +
                         " is for private use and nothing of LTE was found in it; "
                         "say what it holds, as --user-dlt " +
                         text + "=PROTOCOL";
    const auto* const likely =
        std::ranges::find(likely_contents, number, &likely_content::link_type);
    if (likely != likely_contents.end()) {
        advice.append(" (likely ").append(likely->protocols).append(")");
    }
    return advice;
}

}  // namespace KIVRA::TSHARK::REPLAY
