// docs/settings.md shows the tables as they are.
#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/settings/nas_settings.h"
#include "replay/settings/nb_rrc_settings.h"
#include "replay/settings/rrc_settings.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::HasSubstr;

std::string joined(std::string text, std::string_view next) {
    return text.empty() || next.empty() ? text.append(next) : text.append(", ").append(next);
}

std::string roles_of(const table_row& row) {
    std::string roles;
    if ((row.where & in_nas_request) != 0) {
        roles = "requested";
    }
    if ((row.where & in_nas_answer) != 0) {
        roles = joined(roles, "granted");
    }
    if ((row.where &
         (in_mib | in_sib1 | in_further_bands | in_sib2 | in_ce_thresholds | in_group_wus)) != 0) {
        roles = joined(roles, "broadcast");
    }
    if ((row.where & (in_connection | in_release | in_reject)) != 0) {
        roles = joined(roles, "configured");
    }
    return roles;
}

std::string values_of(const table_row& row) {
    switch (row.how) {
        case reading::number:
        case reading::ce_level_number:
            return std::to_string(row.least + row.offset) + " to " +
                   std::to_string(row.greatest + row.offset);
        case reading::bits:
            return "0 to " + std::to_string((1U << static_cast<unsigned>(row.greatest)) - 1);
        case reading::gprs_timer:
        case reading::gprs_timer_2:
            return "0 to 11160, deactivated";
        case reading::gprs_timer_3:
            return "0 to 35712000, deactivated";
        case reading::apn_ambr:
            return "0 to 65280000";
        case reading::extended_apn_ambr:
            return "0 to 16776960000000000";
        case reading::edrx:
            return "see below";
        case reading::operator_code:
        case reading::plmn_identity:
            return "codes and names";
        case reading::emm_cause:
        case reading::esm_cause:
            return "code and name";
        case reading::text:
            return "as it is";
        default:
            break;
    }
    std::string values;
    for (auto value = row.values.begin(); value != row.values.end(); ++value) {
        const bool is_listed = std::find(row.values.begin(), value, *value) != value;
        values = joined(values, is_listed ? "" : *value);
    }
    return values;
}

std::string line_of(const table_row& row, std::string_view prefix) {
    std::string line = "| ";
    line.append(row.name).append(" | ").append(row.unit).append(" | ").append(roles_of(row));
    line.append(" | ").append(values_of(row)).append(" | `").append(prefix).append(row.field);
    return line.append("` | ").append(row.clause).append(" |\n");
}

/// Compares the table behind a heading with the rows, in order.
void expect_table(std::string_view heading, std::span<const table_row> rows,
                  std::string_view prefix) {
    std::string table(heading);
    table += "\n\n| setting | unit | role | values | field | clause |\n";
    table += "| --- | --- | --- | --- | --- | --- |\n";
    for (const auto& row : rows) {
        const bool has_own_prefix =
            prefix == "nas_eps." &&
            (row.field.starts_with("gsm_a.") || row.field.starts_with("ipcp.") ||
             row.field.starts_with("e212.") || row.field.starts_with("GPRS "));
        table += line_of(row, has_own_prefix ? "" : prefix);
    }
    EXPECT_THAT(TESTING::read_file(TESTING::data_file("../../docs/settings.md")), HasSubstr(table));
}

TEST(settings_document, has_the_rows_of_nas) {
    expect_table("## Requested and granted", nas_settings, "nas_eps.");
}

TEST(settings_document, has_the_rows_of_lte_and_lte_m) {
    expect_table("## LTE and LTE-M cells", rrc_settings, "lte-rrc.");
}

TEST(settings_document, has_the_rows_of_nb_iot) {
    expect_table("## NB-IoT cells", nb_rrc_settings, "lte-rrc.");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
