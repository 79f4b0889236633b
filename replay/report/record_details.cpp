#include "replay/report/record_details.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

/// A value of the result document and its name in reports.
struct named_value {
    const char* pointer;
    std::string_view name;
    std::string_view unit;
};

constexpr std::array<named_value, 5> rrc_values{{
    {"/lte-rrc/idrx_int", "idrx_int", ""},
    {"/lte-rrc/idrx_reps", "idrx_reps", ""},
    {"/lte-rrc/cdrx_int", "cdrx_int", ""},
    {"/lte-rrc/cdrx_on_duration", "cdrx_on_duration", ""},
    {"/lte-rrc/cdrx_inactive_timer", "cdrx_inactive_timer", ""},
}};

constexpr std::array<named_value, 6> nas_values{{
    {"/nas-eps/accept", "attach result", ""},
    {"/nas-eps/tac", "tac", ""},
    {"/nas-eps/apn", "apn", ""},
    {"/nas-eps/apn_aggregate_maximum_bit_rate/APN_AMBR_downlink_kbps", "APN-AMBR downlink",
     " kbit/s"},
    {"/nas-eps/apn_aggregate_maximum_bit_rate/APN_AMBR_uplink_kbps", "APN-AMBR uplink", " kbit/s"},
    {"/nas-eps/nas_eps_emm_switch_off", "switch off", ""},
}};

constexpr std::array<named_value, 4> timers{{
    {"/nas-eps/gprs_timer_2_T3324_value", "T3324", ""},
    {"/nas-eps/gprs_timer_3_T3412_extended_value", "T3412 extended", ""},
    {"/nas-eps/gprs_timer_T3412_value", "T3412", ""},
    {"/nas-eps/gprs_timer_T3402_extended_value", "T3402", ""},
}};

struct named_address {
    std::string_view member_end;
    std::string_view name;
};

/// Addresses stand deep in copies of the dissection. The beginnings of their names differ between
/// versions of Wireshark.
constexpr std::array<named_address, 5> addresses{{
    {".pdn_ipv4", "PDN address"},
    {".pdn_ipv6_if_id", "PDN interface identifier"},
    {"ICMPv6_prefix", "PDN prefix"},
    {".pri_dns_address", "primary DNS server"},
    {".sec_dns_address", "secondary DNS server"},
}};

const json* value_at(const json& document, const char* path) {
    const json::json_pointer pointer(path);
    return document.contains(pointer) ? &document.at(pointer) : nullptr;
}

std::string text_of(const json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// Empty where there is nothing.
std::string text_at(const json& document, const char* path) {
    const json* value = value_at(document, path);
    return value == nullptr ? "" : text_of(*value);
}

/// "10 seconds (00000101)"; the octet alone where its unit is not known.
std::string timer_text(const json& timer) {
    const std::string unit = text_at(timer, "/unit");
    std::string text;
    if (unit == "deactivated") {
        text = unit + ' ';
    } else if (!unit.empty()) {
        text = text_at(timer, "/value") + ' ' + unit + ' ';
    }
    return text + '(' + text_at(timer, "/bitmask") + ')';
}

/// "262/2 Vodafone D2 GmbH, Germany"; the names only where the operator list has them.
std::string operator_text(const json& document) {
    std::string text =
        text_at(document, "/nas-eps/mcc_code") + '/' + text_at(document, "/nas-eps/mnc_code");
    if (const auto name = text_at(document, "/nas-eps/mnc"); !name.empty()) {
        text += ' ' + name + ", " + text_at(document, "/nas-eps/mcc");
    }
    return text;
}

/// What the modem asks for, or a reject holds, is not what the network grants.
std::string_view role_of(message_kind kind) {
    switch (kind) {
        case message_kind::request:
            return "requested ";
        case message_kind::reject:
            return "rejected ";
        case message_kind::other:
            return "";
    }
    return "";
}

class details_reader {
  public:
    explicit details_reader(const outcome& result)
        : document_(result.document), message_(result.message) {}

    /// @param whose in front of the names
    void read_values(std::span<const named_value> candidates, std::string_view whose) {
        for (const auto& [pointer, name, unit] : candidates) {
            if (const json* value = value_at(document_, pointer)) {
                add_value(std::string(whose).append(name), text_of(*value).append(unit));
            }
        }
    }

    void read_timers(std::string_view whose) {
        for (const auto& timer : timers) {
            if (const json* value = value_at(document_, timer.pointer)) {
                add_value(std::string(whose).append(timer.name), timer_text(*value));
            }
        }
    }

    void read_operator() {
        if (value_at(document_, "/nas-eps/mcc_code") != nullptr) {
            add_value("operator", operator_text(document_));
        }
    }

    void read_addresses_of(const char* pointer, std::string_view whose) {
        if (const json* tree = value_at(document_, pointer)) {
            read_addresses(*tree, whose);
        }
    }

    /// The dissection has those of mobility management, too.
    void read_causes() {
        for (const auto& [name, text] : message_.causes) {
            add_value(name, text);
        }
        if (message_.causes.empty() && value_at(document_, "/nas-eps/cause") != nullptr) {
            add_value("ESM cause", text_at(document_, "/nas-eps/cause/code") + ": " +
                                       text_at(document_, "/nas-eps/cause/reason"));
        }
    }

    std::vector<detail_value> take() && { return std::move(values_); }

  private:
    void read_addresses(const json& tree, std::string_view whose) {
        for (const auto& [member, value] : tree.items()) {
            if (value.is_structured()) {
                read_addresses(value, whose);
                continue;
            }
            const auto address =
                std::ranges::find_if(addresses, [&name = member](const auto& candidate) {
                    return std::string_view(name).ends_with(candidate.member_end);
                });
            if (address != addresses.end()) {
                add_value(std::string(whose).append(address->name), text_of(value));
            }
        }
    }

    void add_value(std::string_view name, std::string value) {
        values_.push_back({std::string(name), std::move(value)});
    }

    const json& document_;
    const message_description& message_;
    std::vector<detail_value> values_;
};

}  // namespace

std::vector<detail_value> details_of(const outcome& result) {
    details_reader reader(result);
    reader.read_values(rrc_values, "");
    const std::string_view whose = role_of(result.message.kind);
    reader.read_timers(whose);
    reader.read_operator();
    reader.read_values(nas_values, whose);
    reader.read_addresses_of("/nas-eps/pdn", whose);
    reader.read_addresses_of("/nas-eps/dns_server_address_config", whose);
    reader.read_causes();
    return std::move(reader).take();
}

}  // namespace KIVRA::TSHARK::REPLAY
