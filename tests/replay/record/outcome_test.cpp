#include "replay/record/outcome.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(log_messages, that_tell_how_long_tshark_took_are_timings) {
    EXPECT_TRUE(is_timing({3, "tshark processing took: 412ms"}));
}

TEST(log_messages, that_begin_or_end_otherwise_are_no_timings) {
    EXPECT_FALSE(is_timing({3, "longDRX_CycleStartOffset 12ms"}));
    EXPECT_FALSE(is_timing({3, "tshark processing took: long"}));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
