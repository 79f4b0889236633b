#include "replay/input/extraction/protocol_statistics.h"

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

TEST(protocol_statistics, tell_how_many_packets_have_a_protocol) {
    const auto content = read_protocol_statistics(R"(

===================================================================
Protocol Hierarchy Statistics
Filter: 

frame                                    frames:10 bytes:688
  eth                                    frames:10 bytes:688
    ip                                   frames:10 bytes:688
      udp                                frames:2 bytes:169
        dns                              frames:2 bytes:169
      tcp                                frames:8 bytes:519
===================================================================
)");
    EXPECT_EQ(content.packets, 10U);
    EXPECT_THAT(content.protocols,
                ElementsAre(FieldsAre("eth", 10U), FieldsAre("ip", 10U), FieldsAre("udp", 2U),
                            FieldsAre("dns", 2U), FieldsAre("tcp", 8U)));
}

TEST(protocol_statistics, add_up_a_protocol_that_stands_in_several_places) {
    const auto content = read_protocol_statistics(
        "frame   frames:5 bytes:50\n"
        "  eth   frames:3 bytes:30\n"
        "    ip  frames:3 bytes:30\n"
        "  sll   frames:2 bytes:20\n"
        "    ip  frames:2 bytes:20\n");
    EXPECT_EQ(content.packets, 5U);
    EXPECT_THAT(content.protocols,
                ElementsAre(FieldsAre("eth", 3U), FieldsAre("ip", 5U), FieldsAre("sll", 2U)));
}

TEST(protocol_statistics, count_a_protocol_inside_itself_once) {
    const auto content = read_protocol_statistics(
        "frame        frames:3 bytes:30\n"
        "  ip         frames:3 bytes:30\n"
        "    udp      frames:3 bytes:30\n"
        "      ip     frames:2 bytes:20\n"
        "        tcp  frames:2 bytes:20\n");
    EXPECT_THAT(content.protocols,
                ElementsAre(FieldsAre("ip", 3U), FieldsAre("udp", 3U), FieldsAre("tcp", 2U)));
}

TEST(protocol_statistics, are_empty_without_rows) {
    for (const auto* text : {"", "\n\n===\nProtocol Hierarchy Statistics\nFilter: \n\n===\n"}) {
        const auto content = read_protocol_statistics(text);
        EXPECT_EQ(content.packets, 0U);
        EXPECT_THAT(content.protocols, IsEmpty());
    }
}

TEST(protocol_statistics, need_no_line_end_behind_the_last_row) {
    EXPECT_EQ(read_protocol_statistics("frame  frames:7 bytes:1").packets, 7U);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
