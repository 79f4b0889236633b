#include "replay/message/nas_message.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "parser/esm_cause.h"
#include "replay/message/nas_messages.h"
#include "replay/record/emm_causes.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

/// What of a NAS message tells what it is; the first of each counts.
struct nas_fields {
    std::optional<unsigned> security_header;
    std::optional<unsigned> emm_type;
    std::optional<unsigned> esm_type;
    std::optional<unsigned> emm_cause;
    std::optional<unsigned> esm_cause;
    std::optional<unsigned> uplink_detach_type;
    std::optional<unsigned> downlink_detach_type;
    bool is_ciphered = false;
};

/// A field without "nas_eps." or, as other versions of tshark write it, "nas-eps.".
std::string_view field_name(std::string_view member) {
    const bool is_nas = member.starts_with("nas_eps.") || member.starts_with("nas-eps.");
    return is_nas ? member.substr(member.find('.') + 1) : std::string_view();
}

/// Decimal, or hexadecimal behind "0x"; the first of several.
std::optional<unsigned> number_in(const json& value) {
    const json& first = value.is_array() && !value.empty() ? value.front() : value;
    const auto* const text = first.get_ptr<const std::string*>();
    if (text == nullptr) {
        return std::nullopt;
    }
    const bool is_hexadecimal = text->starts_with("0x");
    const char* const begin = text->data() + (is_hexadecimal ? 2 : 0);
    unsigned number = 0;
    const auto [end, error] =
        std::from_chars(begin, text->data() + text->size(), number, is_hexadecimal ? 16 : 10);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

struct wanted_field {
    std::string_view name;
    std::optional<unsigned> nas_fields::*place;
};

constexpr std::array<wanted_field, 7> wanted_fields{{
    {"security_header_type", &nas_fields::security_header},
    {"nas_msg_emm_type", &nas_fields::emm_type},
    {"nas_msg_esm_type", &nas_fields::esm_type},
    {"emm.cause", &nas_fields::emm_cause},
    {"esm.cause", &nas_fields::esm_cause},
    {"emm.detach_type_ul", &nas_fields::uplink_detach_type},
    {"emm.detach_type_dl", &nas_fields::downlink_detach_type},
}};

void collect(const json& tree, nas_fields& fields, int levels) {
    if (levels == 0) {
        return;
    }
    for (const auto& [key, value] : tree.items()) {
        const auto name = field_name(key);
        const auto* const wanted = std::ranges::find(wanted_fields, name, &wanted_field::name);
        if (wanted != wanted_fields.end() && !(fields.*(wanted->place))) {
            fields.*(wanted->place) = number_in(value);
        }
        fields.is_ciphered = fields.is_ciphered || name == "ciphered_msg";
        if (value.is_object()) {
            collect(value, fields, levels - 1);
        }
    }
}

std::string name_in(std::span<const nas_message> messages, std::string_view protocol,
                    unsigned type) {
    const auto found = std::ranges::find(messages, type, &nas_message::type);
    return found == messages.end() ? std::string(protocol) + " message type " + std::to_string(type)
                                   : std::string(found->name);
}

std::string_view emm_cause_reason(unsigned code) {
    const auto* const cause = std::ranges::find(emm_causes, code, &emm_cause::code);
    return cause == emm_causes.end() ? "undefined reason" : cause->text;
}

message_cause cause_of(const char* name, unsigned code, std::string_view reason) {
    return {name, std::to_string(code) + ": " + std::string(reason)};
}

message_kind kind_of(std::string_view name) {
    // The modem's own requests, and not those that the network makes of it.
    constexpr std::array<std::string_view, 7> requests{
        "Attach request",
        "Tracking area update request",
        "PDN connectivity request",
        "Bearer resource allocation request",
        "Bearer resource modification request",
        "Control plane service request",
        "Extended service request",
    };
    if (std::ranges::find(requests, name) != requests.end()) {
        return message_kind::request;
    }
    return name.ends_with(" reject") ? message_kind::reject : message_kind::other;
}

/// Service request is the one message that has a security header type instead of a message type
/// (3GPP TS 24.301, 9.3.1).
constexpr unsigned service_request = 12;

std::string name_of(const nas_fields& fields) {
    if (fields.emm_type) {
        return name_in(emm_messages, "EMM", *fields.emm_type);
    }
    if (fields.security_header.value_or(0) >= service_request) {
        return "Service request";
    }
    return fields.is_ciphered ? "Ciphered NAS message" : "";
}

message_direction direction_in(std::span<const nas_message> messages, unsigned type) {
    const auto found = std::ranges::find(messages, type, &nas_message::type);
    return found == messages.end() ? message_direction::unknown : found->direction;
}

message_direction direction_of(const nas_fields& fields) {
    if (fields.uplink_detach_type) {
        return message_direction::uplink;
    }
    if (fields.downlink_detach_type) {
        return message_direction::downlink;
    }
    if (fields.emm_type) {
        return direction_in(emm_messages, *fields.emm_type);
    }
    if (fields.security_header.value_or(0) >= service_request) {
        return message_direction::uplink;
    }
    return fields.esm_type ? direction_in(esm_messages, *fields.esm_type)
                           : message_direction::unknown;
}

/// 3GPP TS 24.301, 9.8 (message type) and 9.9.3.7 (detach type).
registration_event registration_of(const nas_fields& fields) {
    constexpr unsigned imsi_detach_by_modem = 2;
    constexpr unsigned imsi_detach_by_network = 3;
    switch (fields.emm_type.value_or(0)) {
        case 0x42:  // attach accept
        case 0x49:  // tracking area update accept
            return registration_event::accept;
        case 0x44:  // attach reject
        case 0x4b:  // tracking area update reject
            return registration_event::reject;
        case 0x45:  // detach request; an IMSI detach is none from EPS
            return fields.uplink_detach_type == imsi_detach_by_modem ||
                           fields.downlink_detach_type == imsi_detach_by_network
                       ? registration_event::none
                       : registration_event::detach;
        default:
            return registration_event::none;
    }
}

}  // namespace

message_description describe_nas_message(const json& layer) {
    constexpr int levels_to_fields = 12;
    nas_fields fields;
    collect(layer, fields, levels_to_fields);
    message_description description{.name = name_of(fields), .is_ciphered = fields.is_ciphered};
    description.kind = kind_of(description.name);
    description.direction = direction_of(fields);
    if (fields.esm_type) {
        const auto inner = name_in(esm_messages, "ESM", *fields.esm_type);
        if (description.name.empty()) {
            description.kind = kind_of(inner);
        }
        description.name.append(description.name.empty() ? "" : ", ").append(inner);
    }
    if (description.name.empty()) {
        description.name = "NAS message";
    }
    if (const auto code = fields.emm_cause) {
        description.causes.push_back(cause_of("EMM cause", *code, emm_cause_reason(*code)));
    }
    if (const auto code = fields.esm_cause) {
        const auto reason = PARSER::esm_cause_reason(static_cast<std::int32_t>(*code));
        description.causes.push_back(cause_of("ESM cause", *code, reason));
    }
    // What is exchanged while a connection goes on is little and tells what happens.
    description.is_procedure = !fields.is_ciphered;
    description.registration = registration_of(fields);
    constexpr unsigned tracking_area_update_request = 0x48;
    description.event = fields.emm_type == tracking_area_update_request
                            ? message_event::update_request
                            : message_event::content;
    return description;
}

}  // namespace KIVRA::TSHARK::REPLAY
