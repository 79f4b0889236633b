#include "replay/settings/settings_of.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <string>
#include <string_view>

#include "parser/lte_rrc_mappings.h"
#include "parser/nas_field_names.h"
#include "parser/packet_document.h"
#include "replay/settings/nas_settings.h"
#include "replay/settings/nb_rrc_settings.h"
#include "replay/settings/rrc_settings.h"
#include "replay/settings/setting_values.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

constexpr std::string_view rrc_prefix = "lte-rrc.";

/// A table sorted by its first column, for lookups.
template <typename Row, std::size_t Count, typename Key>
constexpr std::array<Row, Count> sorted(std::array<Row, Count> rows, Key key) {
    std::ranges::sort(rows, {}, key);
    return rows;
}

constexpr auto rrc_rows = sorted(rrc_settings, &table_row::field);
constexpr auto nb_rrc_rows = sorted(nb_rrc_settings, &table_row::field);
constexpr auto nas_rows = sorted(nas_settings, &table_row::field);
constexpr auto place_rows = sorted(rrc_places, &rrc_place::member);

struct position {
    std::span<const table_row> rows;
    bool is_nas;
    places where = 0;
    /// The member whose value this is.
    std::string_view parent = {};
    std::uint32_t item = 0;
    std::uint32_t levels_left = 1'000;
};

bool drop_prefix(std::string_view& text, std::string_view prefix) {
    const bool has_prefix = text.starts_with(prefix);
    text.remove_prefix(has_prefix ? prefix.size() : 0);
    return has_prefix;
}

bool drop_suffix(std::string_view& text, std::string_view suffix) {
    const bool has_suffix = text.ends_with(suffix);
    text.remove_suffix(has_suffix ? suffix.size() : 0);
    return has_suffix;
}

/// The value within a choice of setup and release has names that differ between versions of
/// Wireshark, such as "setup" and "physicalConfigDedicated.eag_7.ce_Mode_r13.setup".
bool is_setup(std::string_view field) {
    return drop_suffix(field, "setup") && (field.empty() || field.back() == '.');
}

template <std::size_t Count>
places place_of(const std::array<settings_message, Count>& messages, const json& type) {
    const auto* text = type.get_ptr<const std::string*>();
    std::string_view digits = text == nullptr ? std::string_view() : *text;
    const int base = drop_prefix(digits, "0x") ? 16 : 10;
    std::uint8_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    const auto message = std::ranges::find(messages, number, &settings_message::type);
    return message == messages.end() ? places{0} : message->where;
}

/// The place that a NAS object is: its message's, or the one around it. A detach request is the
/// network's when it has the network's type.
places nas_place(const json& object, places around) {
    if (const json* type = PARSER::nas_member(object, "nas_eps.nas_msg_emm_type")) {
        const bool is_of_network =
            PARSER::nas_member(object, "nas_eps.emm.detach_type_dl") != nullptr;
        return is_of_network ? in_nas_answer : place_of(emm_settings_messages, *type);
    }
    if (const json* type = PARSER::nas_member(object, "nas_eps.nas_msg_esm_type")) {
        return place_of(esm_settings_messages, *type);
    }
    return around;
}

places rrc_place_of(std::string_view member, places around) {
    const auto place = std::ranges::lower_bound(place_rows, member, {}, &rrc_place::member);
    if (place == place_rows.end() || place->member != member ||
        (place->within != 0 && place->within != around)) {
        return around;
    }
    return place->where;
}

/// One walk over a dissection.
class settings_walk {
  public:
    explicit settings_walk(radio_access access) : values_(access) {}

    // NOLINTNEXTLINE(misc-no-recursion): the position limits the depth
    void enter(const json& tree, position here) {
        if (here.levels_left == 0) {
            return;
        }
        --here.levels_left;
        if (const auto* object = tree.get_ptr<const json::object_t*>()) {
            if (here.is_nas) {
                here.where = nas_place(tree, here.where);
            }
            for (const auto& [name, value] : *object) {
                read_member(name, value, tree, here);
            }
        } else if (const auto* array = tree.get_ptr<const json::array_t*>()) {
            for (const auto& element : *array) {
                enter(element, here);
            }
        }
    }

    std::vector<setting> take() && { return std::move(values_).take(); }

  private:
    // NOLINTNEXTLINE(misc-no-recursion): the position limits the depth
    void read_member(std::string_view name, const json& value, const json& object,
                     const position& here) {
        const bool is_rrc_field = drop_prefix(name, rrc_prefix);
        if (here.is_nas) {
            static_cast<void>(drop_prefix(name, "nas_eps.") || drop_prefix(name, "nas-eps."));
        }
        if (here.where != 0 && is_rrc_field != here.is_nas) {
            read_field(name, {value, object, here.where, here.item}, here);
        }
        if (value.is_structured()) {
            enter(value, inside(name, here));
        }
    }

    void read_field(std::string_view name, const placed_field& field, const position& here) {
        std::string choice;
        if (!here.is_nas && is_setup(name)) {
            std::string_view parent = here.parent;
            drop_suffix(parent, "_tree");
            choice = std::string(parent) + ".setup";
            name = choice;
        }
        auto row = std::ranges::lower_bound(here.rows, name, {}, &table_row::field);
        for (; row != here.rows.end() && row->field == name; ++row) {
            if ((row->where & here.where) != 0) {
                values_.read(*row, field);
            }
        }
    }

    /// The position within a member.
    static position inside(std::string_view name, const position& here) {
        position inner = here;
        inner.parent = name;
        if (name == PARSER::nas_eps_layer) {
            inner.rows = nas_rows;
            inner.is_nas = true;
            inner.where = 0;
        } else if (!here.is_nas) {
            inner.where = rrc_place_of(name, here.where);
            if (drop_prefix(name, "Item ")) {
                std::from_chars(name.data(), name.data() + name.size(), inner.item);
            }
        }
        return inner;
    }

    setting_values values_;
};

}  // namespace

radio_access access_of(const json& packet) noexcept {
    if (!PARSER::has_layer(packet, PARSER::lte_rrc_layer)) {
        return radio_access::unknown;
    }
    const json& dissection = PARSER::layer(packet, PARSER::lte_rrc_layer);
    const auto* members = dissection.get_ptr<const json::object_t*>();
    if (members == nullptr) {
        return radio_access::unknown;
    }
    for (const auto& [name, value] : *members) {
        std::string_view channel = name;
        if (drop_prefix(channel, rrc_prefix) && drop_suffix(channel, "_element")) {
            const bool is_nb = channel.find("_Message") != std::string_view::npos &&
                               channel.find("_NB") != std::string_view::npos;
            return is_nb ? radio_access::nb_s1 : radio_access::wb_s1;
        }
    }
    return radio_access::unknown;
}

std::vector<setting> settings_of(const json& packet, radio_access access) {
    const radio_access own_access = access_of(packet);
    settings_walk walk(own_access == radio_access::unknown ? access : own_access);
    if (PARSER::has_layer(packet, PARSER::lte_rrc_layer)) {
        const bool is_nb = own_access == radio_access::nb_s1;
        walk.enter(PARSER::layer(packet, PARSER::lte_rrc_layer),
                   {is_nb ? std::span<const table_row>(nb_rrc_rows) : rrc_rows, false});
    }
    if (PARSER::has_layer(packet, PARSER::nas_eps_layer)) {
        walk.enter(PARSER::layer(packet, PARSER::nas_eps_layer), {nas_rows, true});
    }
    return std::move(walk).take();
}

}  // namespace KIVRA::TSHARK::REPLAY
