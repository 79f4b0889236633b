#include "parser/number_conversion.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

TEST(to_int, reads_a_decimal_number_with_leading_blanks_sign_and_trailing_text) {
    EXPECT_EQ(to_int("262"), 262);
    EXPECT_EQ(to_int("007"), 7);
    EXPECT_EQ(to_int(" \t-12"), -12);
    EXPECT_EQ(to_int("+5"), 5);
    EXPECT_EQ(to_int("100 - 190"), 100);
    EXPECT_EQ(to_int("0x1b"), 0);
}

TEST(to_int, takes_the_bounds_of_32_bits) {
    EXPECT_EQ(to_int("2147483647"), 2147483647);
    EXPECT_EQ(to_int("-2147483648"), -2147483647 - 1);
}

TEST(to_int, refuses_numbers_beyond_32_bits) {
    for (const char* text : {"2147483648", "-2147483649", "99999999999999999999"}) {
        EXPECT_THAT([text] { to_int(text); },
                    ThrowsMessage<std::out_of_range>(StrEq("stoi argument out of range")))
            << text;
    }
}

TEST(to_int, refuses_a_text_without_a_number) {
    for (const char* text : {"", "?", "-", " ", "x1"}) {
        EXPECT_THAT([text] { to_int(text); },
                    ThrowsMessage<std::invalid_argument>(StrEq("invalid stoi argument")))
            << text;
    }
}

TEST(to_unsigned, reads_a_decimal_number) {
    EXPECT_EQ(to_unsigned("31"), 31U);
    EXPECT_EQ(to_unsigned(" +4x"), 4U);
    EXPECT_EQ(to_unsigned("4294967295"), 4294967295U);
}

TEST(to_unsigned, wraps_a_negative_number_around) {
    EXPECT_EQ(to_unsigned("-1"), 4294967295U);
    EXPECT_EQ(to_unsigned("-4294967295"), 1U);
}

TEST(to_unsigned, refuses_numbers_beyond_32_bits) {
    for (const char* text : {"4294967296", "-4294967296", "99999999999999999999"}) {
        EXPECT_THAT([text] { to_unsigned(text); },
                    ThrowsMessage<std::out_of_range>(StrEq("stoul argument out of range")))
            << text;
    }
}

TEST(to_unsigned, refuses_a_text_without_a_number) {
    for (const char* text : {"", "x", "- 1"}) {
        EXPECT_THAT([text] { to_unsigned(text); },
                    ThrowsMessage<std::invalid_argument>(StrEq("invalid stoul argument")))
            << text;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
