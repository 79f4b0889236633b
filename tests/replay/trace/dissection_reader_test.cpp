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

/// ULInformationTransfer with a tracking area update request, and DLInformationTransfer with an
/// attach accept that is cut short, and with a NAS message that is ciphered.
constexpr std::string_view carried_update = "4801e0e900017ecc5e44100079185ccbd340";
constexpr std::string_view carried_part = "0800a03a100a4830031791027108028a900e080848f818";
constexpr std::string_view carried_cipher = "0800a93cf8e025b0160f4ae9d583a47910b6a54a9bdf0460";

class dissection_readers : public testing::Test {
  protected:
    outcome read(std::string_view format, std::string_view hex, const trace_record& record = {}) {
        outcome result;
        reader_.read(record, dissector_.packet(format, hex), result);
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

TEST_F(dissection_readers, tell_what_the_nas_message_within_an_rrc_message_does) {
    const auto update = read("lte_rrc.ul_dcch", carried_update).message;
    EXPECT_EQ(update.name, "UL-DCCH, ULInformationTransfer");
    EXPECT_EQ(update.event, message_event::update_request);
    const auto part = read("lte_rrc.dl_dcch", carried_part).message;
    EXPECT_EQ(part.event, message_event::content);
    EXPECT_EQ(part.registration, registration_event::accept);
    EXPECT_TRUE(part.is_malformed);
    EXPECT_FALSE(part.is_ciphered);
    EXPECT_TRUE(read("lte_rrc.dl_dcch", carried_cipher).message.is_ciphered);
}

TEST_F(dissection_readers, leave_to_a_nas_record_what_it_tells_itself) {
    const trace_record beside{.carried_nas_is_record = true};
    EXPECT_EQ(read("lte_rrc.ul_dcch", carried_update, beside).message.event,
              message_event::content);
    const auto part = read("lte_rrc.dl_dcch", carried_part, beside).message;
    EXPECT_EQ(part.registration, registration_event::none);
    EXPECT_FALSE(part.is_malformed);
    EXPECT_FALSE(read("lte_rrc.dl_dcch", carried_cipher, beside).message.is_ciphered);
}

TEST_F(dissection_readers, tell_the_radio_access_of_the_last_rrc_message) {
    EXPECT_EQ(read("nas-eps", update_request).message.access, radio_access::unknown);
    EXPECT_EQ(read("lte_rrc.ul_ccch.nb", narrowband_request).message.access, radio_access::nb_s1);
    EXPECT_EQ(read("nas-eps", update_request).message.access, radio_access::nb_s1);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
