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

message_description describe_layers(const json& layers) {
    if (const json* const rrc = find_layer(layers, {"lte_rrc"})) {
        return describe_rrc_message(*rrc);
    }
    if (const json* const nas = find_layer(layers, {"nas-eps", "nas_eps"})) {
        return describe_nas_message(*nas);
    }
    return {.name = "unknown message"};
}

}  // namespace

message_description describe_packet(const json& packet) {
    static const json::json_pointer path("/_source/layers");
    if (!packet.contains(path)) {
        return {.name = "unknown message"};
    }
    const json& layers = packet.at(path);
    auto description = describe_layers(layers);
    description.is_malformed = layers.contains("_ws.malformed");
    return description;
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
