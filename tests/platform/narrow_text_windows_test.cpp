#include <windows.h>

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

TEST_F(narrow_text_on_windows, keeps_a_nul_within) {
    EXPECT_EQ(path_from_narrow(std::string_view("a\0b", 3)).native(), std::wstring(L"a\0b", 3));
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
