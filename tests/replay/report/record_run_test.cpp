#include "replay/report/record_run.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(record_runs, count_messages_in_the_order_of_their_first) {
    record_run run;
    run.add(5, "PCCH, Paging");
    run.add(6, "BCCH-DL-SCH, SystemInformation");
    run.add(7, "PCCH, Paging");
    EXPECT_EQ(run.size(), 3U);
    EXPECT_EQ(run.numbers(), "5-7");
    EXPECT_EQ(run.text(), "2 x PCCH, Paging; 1 x BCCH-DL-SCH, SystemInformation");
}

TEST(record_runs, name_five_messages_and_count_the_others) {
    record_run run;
    std::uint64_t number = 0;
    for (const auto* name : {"a", "b", "c", "d", "e", "f", "g", "e", "f"}) {
        run.add(++number, name);
    }
    EXPECT_EQ(run.text(), "1 x a; 1 x b; 1 x c; 1 x d; 2 x e; 3 x others");
    EXPECT_EQ(run.size(), 9U);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
