#include "replay/record/rrc_channels.h"

#include <algorithm>

namespace KIVRA::TSHARK::REPLAY {

const rrc_channel* channel_of_member(std::string_view member) {
    constexpr std::string_view begin = "lte-rrc.";
    constexpr std::string_view end = "_element";
    if (member.size() < begin.size() + end.size() || !member.starts_with(begin) ||
        !member.ends_with(end)) {
        return nullptr;
    }
    member.remove_prefix(begin.size());
    member.remove_suffix(end.size());
    const auto* const channel = std::ranges::find(rrc_channels, member, &rrc_channel::element);
    return channel == rrc_channels.end() ? nullptr : channel;
}

}  // namespace KIVRA::TSHARK::REPLAY
