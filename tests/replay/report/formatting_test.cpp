#include "replay/report/formatting.h"

#include <sstream>
#include <string>

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

TEST(print_wrapped, fills_lines_of_80_columns) {
    std::ostringstream out;
    print_wrapped(out, std::string(40, 'a') + ' ' + std::string(35, 'b') + " c d", "    ");
    EXPECT_EQ(out.str(),
              "    " + std::string(40, 'a') + ' ' + std::string(35, 'b') + "\n    c d\n");
}

TEST(print_wrapped, goes_on_in_a_line_that_has_been_begun) {
    std::ostringstream out;
    print_wrapped(out, "a b " + std::string(60, 'c'), 77, "  ");
    EXPECT_EQ(out.str(), "a b\n  " + std::string(60, 'c') + '\n');
}

TEST(print_wrapped, counts_characters) {
    std::ostringstream out;
    std::string text;
    for (int i = 0; i < 39; ++i) {
        text += "\xc3\xa9 ";
    }
    print_wrapped(out, text + "ee", "");
    EXPECT_EQ(out.str(), text + "ee\n");
}

TEST(print_wrapped, leaves_a_long_word_whole) {
    std::ostringstream out;
    print_wrapped(out, std::string(90, 'a') + " b", " ");
    EXPECT_EQ(out.str(), ' ' + std::string(90, 'a') + "\n b\n");
}

TEST(counted, has_a_plural) {
    EXPECT_EQ(pluralise(0, "record"), "0 records");
    EXPECT_EQ(pluralise(1, "record"), "1 record");
    EXPECT_EQ(pluralise(2, "record"), "2 records");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
