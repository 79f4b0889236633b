#include "replay/message/describe_message.h"

#include <string>

#include "replay/message/nas_message.h"
#include "replay/message/rrc_message.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

/// A layer by the first of its names that is there; null when there is none. It is a text where
/// there was nothing to dissect.
const json* find_layer(const json& layers, std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        const auto found = layers.find(name);
        if (found != layers.end()) {
            return &*found;
        }
    }
    return nullptr;
}

/// The object with the layer of the NAS message that an RRC message carries; null when there is
/// none.
// NOLINTNEXTLINE(misc-no-recursion): the number of levels limits the depth
const json* find_carried_nas(const json& tree, int levels) {
    if (levels == 0 || !tree.is_object()) {
        return nullptr;
    }
    if (find_layer(tree, {"nas-eps", "nas_eps"}) != nullptr) {
        return &tree;
    }
    for (const auto& member : tree) {
        if (const json* const found = find_carried_nas(member, levels - 1)) {
            return found;
        }
    }
    return nullptr;
}

message_description describe_layers(const json& layers) {
    if (const json* const rrc = find_layer(layers, {"lte_rrc"})) {
        return describe_rrc_message(*rrc);
    }
    if (const json* const nas = find_layer(layers, {"nas-eps", "nas_eps"})) {
        return describe_nas_message(*nas);
    }
    return {.name = "unknown message"};
}

/// Null for a packet without layers.
const json* layers_of(const json& packet) {
    static const json::json_pointer path("/_source/layers");
    return packet.contains(path) ? &packet.at(path) : nullptr;
}

}  // namespace

message_description describe_packet(const json& packet) {
    const json* const layers = layers_of(packet);
    if (layers == nullptr) {
        return {.name = "unknown message"};
    }
    auto description = describe_layers(*layers);
    description.is_malformed = layers->contains("_ws.malformed");
    return description;
}

void add_carried_nas(const json& packet, message_description& description) {
    constexpr int levels_to_nas = 15;
    const json* const layers = layers_of(packet);
    const json* const rrc = layers == nullptr ? nullptr : find_layer(*layers, {"lte_rrc"});
    // Broadcasts and paging, which most messages are, carry none.
    if (rrc == nullptr || description.event != message_event::content) {
        return;
    }
    const json* const around = find_carried_nas(*rrc, levels_to_nas);
    if (around == nullptr) {
        return;
    }
    const auto carried = describe_nas_message(*find_layer(*around, {"nas-eps", "nas_eps"}));
    description.registration = carried.registration;
    description.is_ciphered = carried.is_ciphered;
    description.is_malformed = description.is_malformed || around->contains("_ws.malformed");
    if (carried.event == message_event::update_request) {
        description.event = carried.event;
    }
}

message_description describe_record(const trace_record& record) {
    if (record.format == "ip") {
        const unsigned version = record.payload.empty() ? 0 : record.payload[0] >> 4U;
        return {.name = version == 4   ? "IPv4 packet"
                        : version == 6 ? "IPv6 packet"
                                       : "IP packet",
                .event = message_event::content};
    }
    return {.name = record.format.empty() ? "unknown message" : record.format};
}

}  // namespace KIVRA::TSHARK::REPLAY
