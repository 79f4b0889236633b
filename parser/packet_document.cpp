#include "parser/packet_document.h"

namespace KIVRA::TSHARK::PARSER {

namespace {

/// The object that a member holds; null when there is no such member or it holds something else.
const nlohmann::json* object_member(const nlohmann::json& value, std::string_view name) {
    const auto member = value.find(name);
    return member != value.end() && member->is_object() ? &*member : nullptr;
}

}  // namespace

bool has_layer(const nlohmann::json& packet, std::string_view protocol) {
    const nlohmann::json* source = object_member(packet, "_source");
    if (source == nullptr) {
        return false;
    }
    const nlohmann::json* layers = object_member(*source, "layers");
    return layers != nullptr && layers->contains(protocol);
}

const nlohmann::json& layer(const nlohmann::json& packet, std::string_view protocol) {
    return packet.at("_source").at("layers").at(protocol);
}

}  // namespace KIVRA::TSHARK::PARSER
