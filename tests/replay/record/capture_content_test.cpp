#include "replay/record/capture_content.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(capture_contents, tell_packets_and_protocols) {
    EXPECT_EQ(description_of({.packets = 1'370, .protocols = {{"tcp", 1'195}, {"sctp", 83}}}),
              "1,370 packets: tcp 1,195, sctp 83; no LTE RRC or NAS");
}

TEST(capture_contents, tell_of_encrypted_rrc) {
    EXPECT_EQ(
        description_of({.packets = 2, .protocols = {{"mac-lte", 2}}, .encrypted_rrc = 1'000'000}),
        "2 packets: mac-lte 2; encrypted RRC in 1,000,000; no LTE RRC or NAS");
}

TEST(capture_contents, may_be_empty) {
    EXPECT_EQ(description_of({}), "0 packets; no LTE RRC or NAS");
}

TEST(capture_contents, may_be_one_packet) {
    EXPECT_EQ(description_of({.packets = 1}), "1 packet; no LTE RRC or NAS");
}

TEST(capture_contents, group_digits_by_three) {
    EXPECT_EQ(description_of({.packets = 999}), "999 packets; no LTE RRC or NAS");
    EXPECT_EQ(description_of({.packets = 1'000}), "1,000 packets; no LTE RRC or NAS");
    EXPECT_EQ(description_of({.packets = 123'456}), "123,456 packets; no LTE RRC or NAS");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
