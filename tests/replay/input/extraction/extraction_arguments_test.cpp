#include "replay/input/extraction/extraction_arguments.h"

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

std::vector<std::string> last(std::vector<std::string> list, std::size_t count) {
    return {list.end() - static_cast<std::ptrdiff_t>(count), list.end()};
}

TEST(extraction_arguments, begin_with_the_capture) {
    const auto list = extraction_arguments("/a b.pcap", extraction_depth::everything, {});
    ASSERT_GE(list.size(), 2U);
    EXPECT_EQ(list[0], "-r");
    EXPECT_EQ(list[1], "/a b.pcap");
}

TEST(extraction_arguments, hide_what_is_in_the_layers_where_they_are_enough) {
    EXPECT_THAT(last(extraction_arguments("-", extraction_depth::layers, {}), 2),
                ElementsAre("-j", "frame lte_rrc"));
    EXPECT_THAT(extraction_arguments("-", extraction_depth::everything, {}), Not(Contains("-j")));
}

TEST(extraction_arguments, tell_what_user_link_types_hold) {
    const auto list = extraction_arguments(
        "-", extraction_depth::everything,
        {.user_link_types = {{147, "mac-lte-framed"}, {162, "nas-eps"}}, .tshark_options = {}});
    EXPECT_THAT(
        last(list, 4),
        ElementsAre("-o", R"x(uat:user_dlts:"User 0 (DLT=147)","mac-lte-framed","0","","0","")x",
                    "-o", R"x(uat:user_dlts:"User 15 (DLT=162)","nas-eps","0","","0","")x"));
}

TEST(extraction_arguments, ask_for_packets_of_user_link_types_that_nothing_was_said_about) {
    EXPECT_THAT(extraction_arguments("-", extraction_depth::everything, {}),
                Contains(testing::EndsWith(" || (user_dlt)")));
    EXPECT_THAT(extraction_arguments(
                    "-", extraction_depth::everything,
                    {.user_link_types = {{147, "udp"}, {162, "udp"}}, .tshark_options = {}}),
                Contains(testing::EndsWith(
                    " || (user_dlt && frame.encap_type != 45 && frame.encap_type != 60)")));
}

TEST(extraction_arguments, end_with_the_users_own) {
    const auto list =
        extraction_arguments("-", extraction_depth::layers,
                             {.user_link_types = {{148, "nas-eps"}},
                              .tshark_options = {"-d", "udp.port==4730,gsmtap", "", "a b"}});
    EXPECT_THAT(last(list, 4), ElementsAre("-d", "udp.port==4730,gsmtap", "", "a b"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
