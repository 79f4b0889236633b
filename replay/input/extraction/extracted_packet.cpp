#include "replay/input/extraction/extracted_packet.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "replay/input/extraction/extraction_options.h"
#include "replay/input/extraction/packet_time.h"
#include "replay/input/extraction/printed_json.h"
#include "replay/record/rrc_channels.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// Deeper than tshark's own protocol trees can be.
constexpr int deepest_level = 1'000;

constexpr std::string_view raw_end = "_raw";
constexpr std::string_view rrc_layer = "lte_rrc";

bool is_nas_layer(std::string_view name) {
    return name == "nas-eps" || name == "nas_eps";
}

/// Those of which an error message quotes the packet that it is about: what follows is that packet.
bool is_quoting_layer(std::string_view name) {
    return name == "icmp" || name == "icmpv6";
}

/// The layer that belongs to the raw bytes at that place: layers of one name share a member.
const printed_json& layer_at(const printed_json& layers, std::size_t place) {
    return layers.is_array() && place < layers.size() ? layers[place] : layers;
}

/// Empty for what is a message of no channel, as a container of handovers.
std::string_view dissector_of(const printed_json& rrc) {
    if (rrc.is_object()) {
        for (const auto& [member, value] : rrc.items()) {
            if (const auto* const channel = channel_of_member(member)) {
                return channel->dissector;
            }
        }
    }
    return {};
}

class message_search {
  public:
    explicit message_search(std::vector<extracted_message>& found) : found_(found) {}

    void search(const printed_json& tree, bool is_inside_rrc, int level = 0) {
        if (!tree.is_structured() || level > deepest_level) {
            return;
        }
        if (tree.is_array()) {
            for (const auto& element : tree) {
                search(element, is_inside_rrc, level + 1);
            }
            return;
        }
        for (const auto& [member, value] : tree.items()) {
            if (is_quoting_layer(member)) {
                return;
            }
            if (!member.ends_with(raw_end)) {
                search_member(tree, member, value, is_inside_rrc, level);
            }
        }
    }

  private:
    void search_member(const printed_json& tree, const std::string& member,
                       const printed_json& value, bool is_inside_rrc, int level) {
        const bool is_rrc = member == rrc_layer;
        if (is_rrc && !is_inside_rrc) {
            add_rrc(tree, member, value);
        }
        if (is_nas_layer(member)) {
            // What stands inside an RRC message is printed as a layer behind that one.
            const bool follows_rrc = level == 0 && found_rrc_;
            add_nas(tree, member, is_inside_rrc || follows_rrc);
            return;
        }
        search(value, is_inside_rrc || is_rrc, level + 1);
    }

    void add_rrc(const printed_json& tree, const std::string& member, const printed_json& value) {
        std::size_t place = 0;
        for (auto& bytes : bytes_of(tree, member)) {
            const auto dissector = dissector_of(layer_at(value, place++));
            if (!dissector.empty()) {
                found_.push_back({std::string(dissector), std::move(bytes)});
                found_rrc_ = true;
            }
        }
    }

    void add_nas(const printed_json& tree, const std::string& member, bool is_inside_rrc) {
        for (auto& bytes : bytes_of(tree, member)) {
            found_.push_back({"nas-eps", std::move(bytes), is_inside_rrc});
        }
    }

    static std::vector<std::vector<std::uint8_t>> bytes_of(const printed_json& tree,
                                                           const std::string& member) {
        const auto raw = tree.find(member + std::string(raw_end));
        return raw == tree.end() ? std::vector<std::vector<std::uint8_t>>{} : raw_bytes(*raw);
    }

    std::vector<extracted_message>& found_;
    bool found_rrc_ = false;
};

/// The IPv6 packet of a router advertisement, whose layers follow each other.
std::optional<extracted_message> router_advertisement(const printed_json& layers) {
    constexpr std::uint8_t type = 134;  // RFC 4861, 4.2
    const auto header = layers.find("ipv6_raw");
    const auto message = layers.find("icmpv6_raw");
    if (header == layers.end() || message == layers.end()) {
        return std::nullopt;
    }
    auto headers = raw_bytes(*header);
    const auto messages = raw_bytes(*message);
    if (headers.empty() || messages.empty() || messages.front().empty() ||
        messages.front().front() != type) {
        return std::nullopt;
    }
    extracted_message found{"ip", std::move(headers.back())};
    found.payload.insert(found.payload.end(), messages.front().begin(), messages.front().end());
    return found;
}

/// How often a protocol stands in a list such as "eth:ip:udp:gsmtap:lte_rrc", quotations left out.
std::ptrdiff_t occurrences(std::string_view protocols, auto is_wanted) {
    std::ptrdiff_t count = 0;
    while (!protocols.empty()) {
        const auto end = std::min(protocols.find(':'), protocols.size());
        const auto name = protocols.substr(0, end);
        if (is_quoting_layer(name)) {
            break;
        }
        count += is_wanted(name) ? 1 : 0;
        protocols.remove_prefix(std::min(end + 1, protocols.size()));
    }
    return count;
}

}  // namespace

extracted_packet extract_messages(const std::string& text) {
    const auto packets = parse_printed(text);
    const printed_json& layers = layers_of(packets);
    const printed_json& frame = layers.at("frame");
    extracted_packet packet;
    packet.number = number_of<std::uint64_t>(frame, "frame.number");
    packet.timestamp = packet_time(text_of(frame, "frame.time_epoch"));
    const auto captured = number_of<std::size_t>(frame, "frame.cap_len");
    const auto original = number_of<std::size_t>(frame, "frame.len");
    if (captured < original) {
        packet.failure = cut_short(captured, original);
    }
    message_search(packet.messages).search(layers, false);

    const auto protocols = text_of(frame, "frame.protocols");
    const auto messages = occurrences(
        protocols, [](std::string_view name) { return name == rrc_layer || is_nas_layer(name); });
    packet.hides_messages = messages > std::ssize(packet.messages);
    if (auto advertisement = router_advertisement(layers)) {
        packet.messages.push_back(std::move(*advertisement));
    }
    packet.is_encrypted = packet.messages.empty() &&
                          occurrences(protocols, [](auto name) { return name == "pdcp-lte"; }) > 0;
    const int place = number_of<int>(frame, "frame.encap_type") - first_user_encapsulation;
    if (place >= 0 && place <= last_user_link_type - first_user_link_type) {
        packet.user_link_type = first_user_link_type + place;
    }
    return packet;
}

}  // namespace KIVRA::TSHARK::REPLAY
