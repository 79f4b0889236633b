#include "replay/input/extraction/user_link_types.h"

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

TEST(advice_on_user_link_types, names_the_option_and_the_likely_content) {
    EXPECT_EQ(advice_on_user_link_type(148),
              "link type 148 is for private use and nothing of LTE was found in it; say what it "
              "holds, as --user-dlt 148=PROTOCOL (likely nas-eps)");
    EXPECT_THAT(advice_on_user_link_type(147), EndsWith("147=PROTOCOL (likely mac-lte-framed)"));
    EXPECT_THAT(advice_on_user_link_type(149),
                EndsWith("149=PROTOCOL (likely mac-lte-framed, or udp with "
                         "--tshark-option=--enable-heuristic --tshark-option=mac_lte_udp)"));
    EXPECT_THAT(advice_on_user_link_type(150), EndsWith("150=PROTOCOL (likely s1ap)"));
}

TEST(advice_on_user_link_types, does_not_guess_where_nothing_is_known) {
    EXPECT_THAT(advice_on_user_link_type(162),
                AllOf(StartsWith("link type 162 "), EndsWith(", as --user-dlt 162=PROTOCOL")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
