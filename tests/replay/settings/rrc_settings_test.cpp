// Messages of LTE RRC, encoded from their ASN.1 (unaligned PER) and dissected by the real tshark;
// what their settings are was worked out from 3GPP TS 36.331.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/settings/settings_of.h"
#include "tests/replay/settings/dissection.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::UnorderedElementsAreArray;

/// Compares the settings of the file's messages whose formats contain the text.
void expect_settings_of(std::string_view channel) {
    dissector tshark;
    int compared = 0;
    for (const auto& entry : read_json(data_file("rrc_settings.json"))) {
        const std::string format = entry["format"];
        if (format.find(channel) == std::string::npos) {
            continue;
        }
        SCOPED_TRACE(entry["what"].get<std::string>());
        const auto packet = tshark.packet(format, entry["hex"].get<std::string>());
        EXPECT_THAT(lines_of(settings_of(packet)),
                    UnorderedElementsAreArray(entry["settings"].get<std::vector<std::string>>()));
        const bool is_nb = format.find(".nb") != std::string::npos;
        EXPECT_EQ(access_of(packet), is_nb ? radio_access::nb_s1 : radio_access::wb_s1);
        ++compared;
    }
    EXPECT_GT(compared, 0);
}

TEST(rrc_settings, of_broadcasts_are_in_units) {
    expect_settings_of("bcch");
}

TEST(rrc_settings, of_connection_setups_and_rejects_are_in_units) {
    expect_settings_of("dl_ccch");
}

TEST(rrc_settings, of_reconfigurations_and_releases_are_in_units) {
    expect_settings_of("dl_dcch");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
