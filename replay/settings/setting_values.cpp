#include "replay/settings/setting_values.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <span>
#include <utility>

#include "parser/esm_cause.h"
#include "parser/nas_field_names.h"
#include "replay/record/emm_causes.h"
#include "replay/settings/apn_ambr.h"
#include "replay/settings/edrx.h"
#include "replay/settings/gprs_timers.h"
#include "replay/settings/operator_names.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

const std::string* text_of(const json* value) {
    return value == nullptr ? nullptr : value->get_ptr<const std::string*>();
}

/// The member of an object; null when there is none.
const json* member_of(const json& object, std::string_view name) {
    const auto member = object.find(name);
    return member == object.end() ? nullptr : &*member;
}

/// A whole text that is decimal, or hexadecimal behind "0x".
std::optional<std::int64_t> number_of(std::string_view text) {
    const bool is_hexadecimal = text.starts_with("0x");
    text.remove_prefix(is_hexadecimal ? 2 : 0);
    std::int64_t number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, is_hexadecimal ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::int64_t> number_of(const json* value) {
    const std::string* text = text_of(value);
    return text == nullptr ? std::nullopt : number_of(*text);
}

/// The same where it fits an unsigned type, such as an octet.
template <typename Number>
std::optional<Number> unsigned_of(const json* value) {
    const auto number = number_of(value);
    if (!number || *number < 0 || *number > std::numeric_limits<Number>::max()) {
        return std::nullopt;
    }
    return static_cast<Number>(*number);
}

/// The first bits of octets such as "4e:21"; up to 32 of them.
std::optional<std::uint32_t> first_bits(std::string_view octets, std::int32_t count) {
    std::uint64_t bits = 0;
    std::int32_t size = 0;
    while (size < count && octets.size() >= 2) {
        std::uint8_t octet = 0;
        const auto [end, error] = std::from_chars(octets.data(), octets.data() + 2, octet, 16);
        if (error != std::errc() || end != octets.data() + 2) {
            return std::nullopt;
        }
        bits = bits << 8U | octet;
        size += 8;
        octets.remove_prefix(std::min<std::size_t>(octets.size(), 3));
    }
    if (size < count) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(bits >> static_cast<unsigned>(size - count));
}

setting_role role_in(places where) {
    if (where == in_nas_request) {
        return setting_role::requested;
    }
    if (where == in_nas_answer) {
        return setting_role::granted;
    }
    const bool is_connection = (where & (in_connection | in_release | in_reject)) != 0;
    return is_connection ? setting_role::configured : setting_role::broadcast;
}

bool is_number(std::string_view value) {
    const char first = value.empty() ? '\0' : value.front();
    return first == '-' || ('0' <= first && first <= '9');
}

/// "15 No suitable cells in tracking area"; nothing for a code without a name.
template <typename Causes, typename Name>
std::optional<std::string> cause_text(const std::string& text, const Causes& causes, Name name) {
    const auto code = number_of(text);
    const auto cause = std::ranges::find_if(
        causes, [code](const auto& candidate) { return code && candidate.code == *code; });
    if (cause == causes.end()) {
        return std::nullopt;
    }
    return std::to_string(*code).append(" ").append(std::invoke(name, *cause));
}

/// What the row makes of a text; nothing for one that it does not know.
std::optional<std::string> value_of(const table_row& row, const std::string& text) {
    switch (row.how) {
        case reading::text:
            return text;
        case reading::bits: {
            const auto bits = first_bits(text, row.greatest);
            return bits ? std::optional(std::to_string(*bits)) : std::nullopt;
        }
        case reading::emm_cause:
            return cause_text(text, emm_causes, &emm_cause::text);
        case reading::esm_cause:
            return cause_text(text, PARSER::esm_cause_table, &PARSER::esm_cause::reason);
        default:
            break;
    }
    const auto number = number_of(text);
    if (!number || *number < 0 || *number >= static_cast<std::int64_t>(row.values.size()) ||
        row.values[static_cast<std::size_t>(*number)].empty()) {
        return std::nullopt;
    }
    return std::string(row.values[static_cast<std::size_t>(*number)]);
}

struct timer_fields {
    const char* tree;
    const char* unit;
    const char* value;
    const timer_units& units;
};

const timer_fields& fields_of(reading how) {
    static constexpr timer_fields timer{"gsm_a.gm.gmm.gprs_timer_tree",
                                        "gsm_a.gm.gmm.gprs_timer_unit",
                                        "gsm_a.gm.gmm.gprs_timer_value", gprs_timer_seconds};
    static constexpr timer_fields timer_2{"gsm_a.gm.gmm.gprs_timer2_tree",
                                          "gsm_a.gm.gmm.gprs_timer2_unit",
                                          "gsm_a.gm.gmm.gprs_timer2_value", gprs_timer_seconds};
    static constexpr timer_fields timer_3{"gsm_a.gm.gmm.gprs_timer3_tree",
                                          "gsm_a.gm.gmm.gprs_timer3_unit",
                                          "gsm_a.gm.gmm.gprs_timer3_value", gprs_timer_3_seconds};
    if (how == reading::gprs_timer) {
        return timer;
    }
    return how == reading::gprs_timer_2 ? timer_2 : timer_3;
}

/// "232" of {"Item 0": {"lte-rrc.MCC_MNC_Digit": "2"}, ...}; empty for anything else.
std::string digits_of(const json* list) {
    std::string digits;
    if (list == nullptr || !list->is_object()) {
        return digits;
    }
    for (const auto& [name, item] : list->get_ref<const json::object_t&>()) {
        if (const std::string* digit = text_of(member_of(item, "lte-rrc.MCC_MNC_Digit"))) {
            digits += *digit;
        }
    }
    return digits;
}

}  // namespace

void setting_values::read(const table_row& row, const placed_field& field) {
    switch (row.how) {
        case reading::gprs_timer:
        case reading::gprs_timer_2:
        case reading::gprs_timer_3:
            read_timer(row, field);
            break;
        case reading::edrx:
            read_edrx(row, field);
            break;
        case reading::apn_ambr:
            read_ambr(row, field);
            break;
        case reading::extended_apn_ambr:
            read_extended_ambr(row, field);
            break;
        case reading::plmn_identity:
            read_plmn_identity(row, field);
            break;
        case reading::presence:
            add_known(row, field.where, std::string(row.name), std::string(row.values.front()));
            break;
        default:
            read_text(row, field);
            break;
    }
}

void setting_values::read_text(const table_row& row, const placed_field& field) {
    const std::string* text = text_of(&field.value);
    if (text == nullptr) {
        return;
    }
    if (row.how == reading::number || row.how == reading::ce_level_number) {
        read_number(row, field, *text);
        return;
    }
    if (row.how == reading::operator_code) {
        // "e212.tai.mcc", "e212.tai.mnc"
        std::string mnc_field(row.field);
        mnc_field[mnc_field.size() - 2] = 'n';
        if (const std::string* mnc = text_of(member_of(field.siblings, mnc_field))) {
            add_known(row, field.where, std::string(row.name), operator_text(*text, *mnc));
        }
        return;
    }
    if (auto value = value_of(row, *text)) {
        add_known(row, field.where, std::string(row.name), std::move(*value));
    } else {
        add_raw(row, field.where, std::string(row.name), *text);
    }
}

void setting_values::read_number(const table_row& row, const placed_field& field,
                                 const std::string& text) {
    std::string name(row.name);
    if (row.how == reading::ce_level_number) {
        name += ' ' + std::to_string(field.item + 1);
    }
    const auto number = number_of(text);
    if (number && row.least <= *number && *number <= row.greatest) {
        add_known(row, field.where, std::move(name), std::to_string(*number + row.offset));
    } else {
        add_raw(row, field.where, std::move(name), text);
    }
}

void setting_values::read_timer(const table_row& row, const placed_field& field) {
    const timer_fields& fields = fields_of(row.how);
    const json* tree = member_of(field.value, fields.tree);
    if (tree == nullptr) {
        return;
    }
    const auto unit = number_of(member_of(*tree, fields.unit));
    const auto value = number_of(member_of(*tree, fields.value));
    if (!unit || !value) {
        return;
    }
    if (auto text = timer_text(fields.units, *unit, *value)) {
        add_known(row, field.where, std::string(row.name), std::move(*text));
    } else {
        add_raw(row, field.where, std::string(row.name),
                std::to_string(*unit) + ' ' + std::to_string(*value));
    }
}

void setting_values::read_edrx(const table_row& row, const placed_field& field) {
    const auto cycle = unsigned_of<std::uint8_t>(&field.value);
    const auto window =
        unsigned_of<std::uint8_t>(member_of(field.siblings, "gsm_a.gm.gmm.paging_time_window"));
    const auto add_reading = [&](const edrx_tables& tables, const char* mode) {
        if (!cycle || *cycle >= tables.cycles.size()) {
            return;
        }
        const bool is_known = access_ != radio_access::unknown;
        const std::string suffix = is_known ? "" : std::string(" in ") + mode + " mode";
        const auto add_value = [&](const char* name, std::string_view value) {
            add(row, {name + suffix, std::string(value), is_number(value) ? row.unit : "",
                      role_in(field.where), row.clause, is_known});
        };
        const std::string_view length = tables.cycles.at(*cycle);
        add_value("eDRX cycle", length);
        if (is_number(length) && window && *window < tables.windows.size()) {
            add_value("paging time window", tables.windows.at(*window));
        }
    };
    if (access_ != radio_access::nb_s1) {
        add_reading(wb_s1_edrx, "WB-S1");
    }
    if (access_ != radio_access::wb_s1) {
        add_reading(nb_s1_edrx, "NB-S1");
    }
}

void setting_values::read_ambr(const table_row& row, const placed_field& field) {
    const auto octet = [&field](std::string_view name) {
        return unsigned_of<std::uint8_t>(PARSER::nas_member(field.siblings, name));
    };
    for (const auto& [direction, suffix] :
         {std::pair{"downlink", "dl"}, std::pair{"uplink", "ul"}}) {
        const std::string rate_field = std::string("nas_eps.esm.apn_ambr_") + suffix;
        const auto rate = octet(rate_field);
        if (!rate) {
            continue;
        }
        const ambr_octets octets{*rate, octet(rate_field + "_ext").value_or(0),
                                 octet(rate_field + "_ext2").value_or(0)};
        std::string name = std::string(row.name) + ' ' + direction;
        if (const auto kbps = ambr_kbps(octets)) {
            add_known(row, field.where, std::move(name), std::to_string(*kbps));
        } else {
            add_raw(row, field.where, std::move(name),
                    std::to_string(octets.rate) + ' ' + std::to_string(octets.extended) + ' ' +
                        std::to_string(octets.extended_2));
        }
    }
}

void setting_values::read_extended_ambr(const table_row& row, const placed_field& field) {
    for (const auto& [direction, suffix] :
         {std::pair{"downlink", "dl"}, std::pair{"uplink", "ul"}}) {
        const std::string value_field = std::string("nas_eps.esm.ext_apn_ambr_") + suffix;
        const auto unit =
            unsigned_of<std::uint8_t>(PARSER::nas_member(field.siblings, value_field + "_unit"));
        const auto value =
            unsigned_of<std::uint16_t>(PARSER::nas_member(field.siblings, value_field));
        if (!unit || !value) {
            continue;
        }
        std::string name = std::string(row.name) + ' ' + direction;
        if (const auto mbps = extended_ambr_mbps(*unit, *value)) {
            add_known(row, field.where, std::move(name), std::to_string(*mbps));
        } else {
            add_raw(row, field.where, std::move(name),
                    std::to_string(*unit) + ' ' + std::to_string(*value));
        }
    }
}

void setting_values::read_plmn_identity(const table_row& row, const placed_field& field) {
    std::string country = digits_of(member_of(field.value, "lte-rrc.mcc_tree"));
    const std::string network = digits_of(member_of(field.value, "lte-rrc.mnc_tree"));
    if (!country.empty()) {
        country_ = std::move(country);
    }
    if (!country_.empty() && !network.empty()) {
        add_known(row, field.where, std::string(row.name), operator_text(country_, network));
    }
}

void setting_values::add(const table_row& row, setting read) {
    for (std::size_t i = settings_.size(); i-- > 0;) {
        if (settings_[i].name != read.name || settings_[i].role != read.role) {
            continue;
        }
        if (ranks_[i] > row.rank || settings_[i].value == read.value) {
            return;
        }
        if (ranks_[i] < row.rank) {
            settings_.erase(settings_.begin() + static_cast<std::ptrdiff_t>(i));
            ranks_.erase(ranks_.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    settings_.push_back(std::move(read));
    ranks_.push_back(row.rank);
}

void setting_values::add_known(const table_row& row, places where, std::string name,
                               std::string value) {
    const std::string_view unit = is_number(value) ? row.unit : "";
    add(row, {std::move(name), std::move(value), unit, role_in(where), row.clause, true});
}

void setting_values::add_raw(const table_row& row, places where, std::string name,
                             std::string value) {
    add(row, {std::move(name), std::move(value), "", role_in(where), row.clause, false});
}

}  // namespace KIVRA::TSHARK::REPLAY
