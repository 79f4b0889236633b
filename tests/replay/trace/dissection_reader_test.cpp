// What dissections by the real tshark tell, one after the other.
#include "replay/runner/dissection_reader.h"

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/replay/settings/dissection.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::ElementsAre;

constexpr std::string_view lte_request = "4c8c2e65e9a6";
constexpr std::string_view narrowband_request = "20222469579a400000";
/// With an eDRX value of 4, which is another cycle in NB-S1 mode (3GPP TS 24.008, 10.5.5.32).
constexpr std::string_view update_request = "0748000bf662f2208003c8c2e65e9a6e0114";

class dissection_readers : public testing::Test {
  protected:
    outcome read(std::string_view format, std::string_view hex) {
        outcome result;
        reader_.read(dissector_.packet(format, hex), result);
        return result;
    }

    /// Of the update request.
    std::vector<std::string> cycles() {
        return lines_of(read("nas-eps", update_request).settings, "requested eDRX cycle");
    }

  private:
    dissector dissector_;
    dissection_reader reader_;
};

TEST_F(dissection_readers, tell_the_message_and_its_settings) {
    const auto result = read("nas-eps", update_request);
    EXPECT_EQ(result.message.name, "Tracking area update request");
    EXPECT_EQ(result.message.event, message_event::update_request);
    EXPECT_FALSE(result.settings.empty());
}

TEST_F(dissection_readers, read_nas_in_both_ways_before_they_know_the_radio_access) {
    EXPECT_THAT(cycles(), ElementsAre("requested eDRX cycle in WB-S1 mode: 61.44 s ?",
                                      "requested eDRX cycle in NB-S1 mode: 20.48 s ?"));
}

TEST_F(dissection_readers, read_nas_by_the_radio_access_of_the_last_rrc_message) {
    read("lte_rrc.ul_ccch.nb", narrowband_request);
    EXPECT_THAT(cycles(), ElementsAre("requested eDRX cycle: 20.48 s"));
    EXPECT_THAT(cycles(), ElementsAre("requested eDRX cycle: 20.48 s"));
    read("lte_rrc.ul_ccch", lte_request);
    EXPECT_THAT(cycles(), ElementsAre("requested eDRX cycle: 61.44 s"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
