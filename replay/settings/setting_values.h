/// From the fields of a dissection and the rows of the tables to settings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "replay/record/setting.h"
#include "replay/settings/table_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// A field where it stands in the dissection.
struct placed_field {
    const nlohmann::json& value;
    /// The object whose member it is.
    const nlohmann::json& siblings;
    /// The part of the message.
    places where;
    /// The index within the innermost list.
    std::uint32_t item;
};

/// The settings of one packet, as its fields are read.
class setting_values {
  public:
    explicit setting_values(radio_access access) : access_(access) {}

    /// Adds what the row makes of the field; nothing for a field of another shape.
    void read(const table_row& row, const placed_field& field);

    std::vector<setting> take() && { return std::move(settings_); }

  private:
    void read_text(const table_row& row, const placed_field& field);
    void read_number(const table_row& row, const placed_field& field, const std::string& text);
    void read_timer(const table_row& row, const placed_field& field);
    void read_edrx(const table_row& row, const placed_field& field);
    void read_ambr(const table_row& row, const placed_field& field);
    void read_extended_ambr(const table_row& row, const placed_field& field);
    void read_plmn_identity(const table_row& row, const placed_field& field);

    /// Replaces settings with the name of a lower rank; one of a higher rank, or with the
    /// same value, stays alone.
    void add(const table_row& row, setting read);
    void add_known(const table_row& row, places where, std::string name, std::string value);
    void add_raw(const table_row& row, places where, std::string name, std::string value);

    radio_access access_;
    std::vector<setting> settings_;
    /// The rank of each setting.
    std::vector<std::uint8_t> ranks_;
    /// The country code of the last operator that had one: a list of operators leaves out the same.
    std::string country_;
};

}  // namespace KIVRA::TSHARK::REPLAY
