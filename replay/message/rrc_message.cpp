#include "replay/message/rrc_message.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "replay/record/rrc_channels.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

constexpr std::string_view member_begin = "lte-rrc.";
constexpr std::string_view element_end = "_element";
constexpr std::string_view tree_end = "_tree";
constexpr std::string_view narrowband_end = " NB";

/// What a member of the dissection stands for, without what Wireshark puts around the name; empty
/// for a member of another kind.
std::string_view name_between(std::string_view member, std::string_view end) {
    if (!member.starts_with(member_begin) || !member.ends_with(end)) {
        return {};
    }
    member.remove_prefix(member_begin.size());
    member.remove_suffix(end.size());
    return member;
}

/// Of the abbreviations that begin a name, which ASN.1 writes small there.
constexpr std::array<std::string_view, 6> abbreviations{"rrc", "ul", "dl", "ue", "csfb", "scg"};

/// "ulInformationTransfer" as "ULInformationTransfer".
std::string as_type(std::string_view name) {
    std::string text(name);
    std::ranges::replace(text, '_', '-');
    std::size_t capitals = 1;
    for (const auto abbreviation : abbreviations) {
        const bool is_whole_word =
            text.size() > abbreviation.size() &&
            std::isupper(static_cast<unsigned char>(text[abbreviation.size()])) != 0;
        if (text.starts_with(abbreviation) && is_whole_word) {
            capitals = abbreviation.size();
        }
    }
    for (std::size_t i = 0; i < std::min(capitals, text.size()); ++i) {
        text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    }
    return text;
}

/// "RRCConnectionRequest-NB" for "rrcConnectionRequest_r13" of an NB-IoT channel.
std::string message_name(std::string_view element, const rrc_channel& channel) {
    if (!channel.name.ends_with(narrowband_end)) {
        return as_type(element);
    }
    const auto release = element.rfind("_r");
    const bool ends_in_release =
        release != std::string_view::npos &&
        element.find_first_not_of("0123456789", release + 2) == std::string_view::npos;
    return as_type(ends_in_release ? element.substr(0, release) : element) + "-NB";
}

struct member {
    std::string_view name;
    const json* value = nullptr;
};

/// The first member of that kind.
member find_member(const json& object, std::string_view end) {
    for (const auto& [key, value] : object.items()) {
        const auto name = name_between(key, end);
        if (!name.empty() && value.is_object()) {
            return {name, &value};
        }
    }
    return {};
}

/// The message within a channel's element: the choices above it are trees, it is an element.
member find_message(const json& channel_element) {
    const json* level = &channel_element;
    while (true) {
        if (const auto element = find_member(*level, element_end); element.value != nullptr) {
            return element;
        }
        const auto choice = find_member(*level, tree_end);
        if (choice.value == nullptr) {
            return {};
        }
        level = choice.value;
    }
}

/// "SIB2" for "sib2", "sib2_v1250" or "sib2_r13"; empty for other names.
std::string block_name(std::string_view name) {
    constexpr std::string_view begin = "sib";
    if (!name.starts_with(begin) || name.size() == begin.size() ||
        std::isdigit(static_cast<unsigned char>(name[begin.size()])) == 0) {
        return {};
    }
    name.remove_prefix(begin.size());
    return "SIB" + std::string(name.substr(0, name.find_first_not_of("0123456789")));
}

/// The blocks of a SystemInformation message, which stand in a list some levels down.
void add_blocks(const json& tree, std::string& blocks, int levels) {
    if (levels == 0) {
        return;
    }
    for (const auto& [key, value] : tree.items()) {
        if (!value.is_object()) {
            continue;
        }
        const auto block = block_name(name_between(key, element_end));
        if (block.empty()) {
            add_blocks(value, blocks, levels - 1);
        } else {
            blocks.append(blocks.empty() ? "" : " ").append(block);
        }
    }
}

message_event event_of(std::string_view message, const rrc_channel& channel) {
    constexpr std::array<std::string_view, 3> requests{
        "rrcConnectionRequest", "rrcConnectionResumeRequest", "rrcEarlyDataRequest"};
    constexpr std::array<std::string_view, 3> ends{"rrcConnectionRelease", "rrcConnectionReject",
                                                   "rrcEarlyDataComplete"};
    const auto begins = [message](std::string_view name) { return message.starts_with(name); };
    if (std::ranges::any_of(requests, begins)) {
        return message_event::connection_request;
    }
    if (std::ranges::any_of(ends, begins)) {
        return message_event::connection_end;
    }
    if (begins("paging")) {
        return message_event::paging;
    }
    return channel.name.find("DCCH") == std::string_view::npos ? message_event::none
                                                               : message_event::content;
}

/// 3GPP TS 36.331, 6.2.2: ResumeCause, and EstablishmentCause, which lacks the last one.
constexpr std::array<std::string_view, 8> resume_causes{
    "emergency", "highPriorityAccess",  "mt-Access",    "mo-Signalling",
    "mo-Data",   "delayTolerantAccess", "mo-VoiceCall", "mt-EDT"};
constexpr auto establishment_causes =
    std::span<const std::string_view>(resume_causes).first(resume_causes.size() - 1);

/// 3GPP TS 36.331, 6.7.2: EstablishmentCause-NB.
constexpr std::array<std::string_view, 6> narrowband_causes{
    "mt-Access", "mo-Signalling", "mo-Data", "mo-ExceptionData", "delayTolerantAccess", "mt-EDT"};

/// 3GPP TS 36.331, 6.2.2 and 6.7.2: the establishmentCause-r15 of RRCEarlyDataRequest.
constexpr std::array<std::string_view, 2> early_data_causes{"mo-Data", "delayTolerantAccess"};
constexpr std::array<std::string_view, 4> narrowband_early_data_causes{
    "mo-Data", "mo-ExceptionData", "delayTolerantAccess", "mt-Access"};

std::span<const std::string_view> cause_names(std::string_view field, const rrc_channel& channel) {
    const bool is_narrowband = channel.name.ends_with(narrowband_end);
    if (field == "establishmentCause_r15") {
        return is_narrowband ? std::span<const std::string_view>(narrowband_early_data_causes)
                             : early_data_causes;
    }
    if (is_narrowband) {
        return narrowband_causes;
    }
    return field.starts_with("resumeCause") ? resume_causes : establishment_causes;
}

/// The cause by its number in the dissection; empty for a number without a name.
std::string cause_name(const json& value, std::string_view field, const rrc_channel& channel) {
    const auto names = cause_names(field, channel);
    const auto* const text = value.get_ptr<const std::string*>();
    std::size_t number = names.size();
    if (text != nullptr) {
        std::from_chars(text->data(), text->data() + text->size(), number);
    }
    return number < names.size() ? std::string(names[number]) : "";
}

/// Why a request asks for a connection.
std::string connection_cause(const json& tree, const rrc_channel& channel, int levels) {
    for (const auto& [key, value] : tree.items()) {
        const auto name = name_between(key, "");
        if (name.starts_with("establishmentCause") || name.starts_with("resumeCause")) {
            return cause_name(value, name, channel);
        }
        if (value.is_object() && levels > 0) {
            if (auto cause = connection_cause(value, channel, levels - 1); !cause.empty()) {
                return cause;
            }
        }
    }
    return {};
}

bool changes_connection(std::string_view message) {
    return message.starts_with("rrc") || message.starts_with("mobility");
}

/// Of a channel of the Uu interface; those of sidelinks go between modems.
message_direction direction_of(const rrc_channel& channel) {
    if (channel.name.starts_with("SBCCH")) {
        return message_direction::unknown;
    }
    return channel.name.starts_with("UL-") ? message_direction::uplink
                                           : message_direction::downlink;
}

}  // namespace

message_description describe_rrc_message(const json& layer) {
    for (const auto& [key, value] : layer.items()) {
        const auto* const channel = channel_of_member(key);
        if (channel == nullptr) {
            continue;
        }
        message_description description{.name = std::string(channel->name),
                                        .direction = direction_of(*channel)};
        if (channel->name.starts_with("BCCH-BCH")) {
            // It carries nothing else, and its message has no name of its own there.
            description.name += ", MasterInformationBlock";
            return description;
        }
        const auto message = value.is_object() ? find_message(value) : member{};
        if (message.value == nullptr) {
            return description;
        }
        description.name += ", " + message_name(message.name, *channel);
        description.is_procedure = changes_connection(message.name);
        description.event = event_of(message.name, *channel);
        if (description.event == message_event::connection_request) {
            constexpr int levels_to_cause = 6;
            description.connection_cause =
                connection_cause(*message.value, *channel, levels_to_cause);
        }
        if (message.name.starts_with("systemInformation") &&
            !message.name.starts_with("systemInformationBlock")) {
            constexpr int levels_to_blocks = 8;
            std::string blocks;
            add_blocks(*message.value, blocks, levels_to_blocks);
            description.name += blocks.empty() ? "" : " [" + blocks + "]";
        }
        return description;
    }
    return {.name = "LTE RRC"};
}

}  // namespace KIVRA::TSHARK::REPLAY
