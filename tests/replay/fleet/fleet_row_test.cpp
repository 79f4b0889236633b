#include "replay/fleet/fleet_row.h"

#include <string>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::Each;

fleet_row row_without_summary(int status, const std::string& error = "") {
    return row_of("a.pcap", {.exit_status = status, .error = error, .summary = {}});
}

TEST(fleet_row, has_a_cell_for_each_column) {
    EXPECT_EQ(row_without_summary(2).size(), fleet_columns().size());
}

TEST(fleet_row, has_nothing_but_the_failure_without_a_summary) {
    auto row = row_without_summary(2, "can't read a.pcap");
    EXPECT_EQ(cell_of(row, "capture"), "a.pcap");
    EXPECT_EQ(cell_of(row, "status"), "unreadable");
    EXPECT_EQ(cell_of(row, "error"), "can't read a.pcap");
    row.erase(row.begin(), row.begin() + 3);
    EXPECT_THAT(row, Each(std::string()));
}

TEST(fleet_row, tells_of_a_process_that_ended_in_another_way) {
    const auto row = row_without_summary(139);
    EXPECT_EQ(cell_of(row, "status"), "crashed");
    EXPECT_EQ(cell_of(row, "error"), "ended with status 139");
}

TEST(fleet_row, ends_with_the_page) {
    auto row = row_of("lab/a.pcap", {.exit_status = 0, .error = {}, .summary = {}});
    EXPECT_EQ(fleet_columns().back(), "page");
    EXPECT_EQ(row.back(), "");
    set_page(row, "lab/a.pcap.html");
    EXPECT_EQ(row.back(), "lab/a.pcap.html");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
