#include "replay/report/formatting.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(iso_8601, has_microseconds) {
    EXPECT_EQ(iso_8601(0), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(iso_8601(1'764'000'000'142'200), "2025-11-24T16:00:00.142200Z");
    EXPECT_EQ(iso_8601(951'825'599'999'999), "2000-02-29T11:59:59.999999Z");
    EXPECT_EQ(iso_8601(1), "1970-01-01T00:00:00.000001Z");
}

TEST(iso_8601, ends_with_the_year_9999) {
    EXPECT_EQ(iso_8601(253'402'300'799'999'999), "9999-12-31T23:59:59.999999Z");
    EXPECT_EQ(iso_8601(253'402'300'800'000'000), "253402300800000000 us");
    EXPECT_EQ(iso_8601(18'446'744'073'709'551'615U), "18446744073709551615 us");
}

TEST(printable, keeps_texts_and_spells_control_characters) {
    EXPECT_EQ(printable("lte_rrc.ul_dcch \xc3\xa9 ~"), "lte_rrc.ul_dcch \xc3\xa9 ~");
    EXPECT_EQ(printable("a\x1b[2J\n\x7f"), "a\\x1b[2J\\x0a\\x7f");
}

TEST(counted, has_a_plural) {
    EXPECT_EQ(pluralise(0, "record"), "0 records");
    EXPECT_EQ(pluralise(1, "record"), "1 record");
    EXPECT_EQ(pluralise(2, "record"), "2 records");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
