#include <windows.h>

#include <system_error>

#include <gtest/gtest.h>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

// Byte 0x84 is a low quotation mark in code page 1252 (ANSI) and an a with two dots in 437 (OEM).
class narrow_text_on_windows : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(GetACP(), 1252U);
        ASSERT_EQ(GetOEMCP(), 437U);
    }
    void TearDown() override { SetFileApisToANSI(); }
};

TEST_F(narrow_text_on_windows, is_in_the_ansi_code_page) {
    EXPECT_EQ(path_from_narrow("a\x84z").native(), L"a\u201Ez");
    EXPECT_EQ(path_from_narrow("\xE4\x80").native(), L"\u00E4\u20AC");
}

TEST_F(narrow_text_on_windows, is_in_the_oem_code_page_where_the_process_chose_that) {
    SetFileApisToOEM();
    EXPECT_EQ(path_from_narrow("a\x84z").native(), L"a\u00E4z");
}

TEST_F(narrow_text_on_windows, comes_of_a_path_in_the_same_code_page) {
    EXPECT_EQ(narrow_from_path(L"a\u201Ez"), "a\x84z");
    EXPECT_EQ(narrow_from_path(L""), "");
    SetFileApisToOEM();
    EXPECT_EQ(narrow_from_path(L"a\u00E4z"), "a\x84z");
}

TEST_F(narrow_text_on_windows, does_not_come_of_a_path_with_other_characters) {
    EXPECT_THROW(narrow_from_path(L"\u65E5"), std::system_error);
    // The ANSI code page has a likeness of it.
    EXPECT_THROW(narrow_from_path(L"\u0101"), std::system_error);
}

TEST_F(narrow_text_on_windows, keeps_a_nul_within) {
    EXPECT_EQ(path_from_narrow(std::string_view("a\0b", 3)).native(), std::wstring(L"a\0b", 3));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
