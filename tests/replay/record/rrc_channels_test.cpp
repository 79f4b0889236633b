#include "replay/record/rrc_channels.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;

class rrc_channels_of_tshark : public scratch_test {};

TEST_F(rrc_channels_of_tshark, have_these_dissectors_and_elements) {
    std::vector<image_packet> packets;
    packets.reserve(rrc_channels.size());
    for (const auto& channel : rrc_channels) {
        packets.push_back(
            {exported_pdu_image(channel.dissector, std::string(40, '\0')), packets.size()});
    }
    write_file("c.pcapng", capture_image(exported_pdu_link_type, packets));
    const auto result = run_process({tshark_directory() / "tshark", "-r", "c.pcapng", "-T", "json",
                                     "--no-duplicate-keys", "-J", "lte_rrc"});
    ASSERT_EQ(result.status, 0) << result.error;
    const auto printed = nlohmann::json::parse(result.output);
    ASSERT_EQ(printed.size(), rrc_channels.size());
    for (std::size_t place = 0; place < rrc_channels.size(); ++place) {
        const auto& rrc = printed[place].at("_source").at("layers").at("lte_rrc");
        const auto member = "lte-rrc." + std::string(rrc_channels.at(place).element) + "_element";
        EXPECT_TRUE(rrc.contains(member)) << member << rrc.dump(1);
    }
}

TEST(rrc_channels, are_found_by_the_member_of_their_element) {
    for (const auto& channel : rrc_channels) {
        EXPECT_EQ(channel_of_member("lte-rrc." + std::string(channel.element) + "_element"),
                  &channel);
    }
}

TEST(rrc_channels, are_not_found_by_other_members) {
    for (const auto* member :
         {"", "lte-rrc.", "_element", "lte-rrc._element", "PCCH_Message_element",
          "lte-rrc.PCCH_Message", "lte-rrc.PCCH_Message_tree", "lte-rrc.PCCH_Message:element",
          "lte-rrc.PCCH_Message_element_raw", "lte-rrc.Paging_element", "lte-rrc_element"}) {
        EXPECT_EQ(channel_of_member(member), nullptr) << member;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
