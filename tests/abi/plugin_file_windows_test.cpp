// The parts of the plug-in's file other than its code.
#include <windows.h>

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class plugin_file : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(module_, nullptr);
        const auto* header =
            at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
        directories_ = header->OptionalHeader.DataDirectory;
    }
    void TearDown() override { FreeLibrary(module_); }

    /// What the loaded file holds at an offset.
    template <typename T>
    const T* at(DWORD offset) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module_) + offset);
    }

    template <typename T>
    const T* directory(int index) const {
        return at<T>(directories_[index].VirtualAddress);
    }

  private:
    HMODULE module_ = LoadLibraryW(TESTING::plugin_file().c_str());
    const IMAGE_DATA_DIRECTORY* directories_ = nullptr;
};

TEST_F(plugin_file, exports_the_eight_functions_and_nothing_else) {
    const auto* exports = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    EXPECT_EQ(exports->NumberOfFunctions, 8U);
    std::vector<std::string> names;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
        names.emplace_back(at<char>(at<DWORD>(exports->AddressOfNames)[i]));
    }
    EXPECT_THAT(names, ElementsAre("kivra_sink_cancel", "kivra_sink_complete", "kivra_sink_data",
                                   "kivra_sink_get_last_error", "kivra_sink_init",
                                   "kivra_sink_init_parameters", "kivra_sink_release",
                                   "kivra_sink_version"));
    EXPECT_STREQ(at<char>(exports->Name), "kivra-tshark-sink.dll");
}

TEST_F(plugin_file, imports_from_windows_alone) {
    std::vector<std::string> names;
    for (const auto* import = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         import->Name != 0; ++import) {
        names.emplace_back(at<char>(import->Name));
    }
    EXPECT_THAT(names, Not(IsEmpty()));
    EXPECT_THAT(names, Each(testing::AnyOf("KERNEL32.dll", "msvcrt.dll")));
}

TEST_F(plugin_file, tells_its_version) {
    const std::wstring file = TESTING::plugin_file().make_preferred().native();
    std::vector<char> resource(GetFileVersionInfoSizeW(file.c_str(), nullptr));
    ASSERT_TRUE(
        GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()));
    void* found = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\", &found, &size));
    const auto* version = static_cast<const VS_FIXEDFILEINFO*>(found);
    EXPECT_EQ(version->dwFileVersionMS, 13U);
    EXPECT_EQ(version->dwFileVersionLS, 1U << 16U);
    const auto text = [&](const wchar_t* name) {
        const std::wstring key = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
        return VerQueryValueW(resource.data(), key.c_str(), &found, &size)
                   ? std::wstring(static_cast<const wchar_t*>(found))
                   : L"";
    };
    EXPECT_EQ(text(L"ProductName"), L"kivra-tshark-sink");
    EXPECT_EQ(text(L"OriginalFilename"), L"kivra-tshark-sink.dll");
    EXPECT_EQ(text(L"FileVersion"), L"0.13.1");
}

}  // namespace
}  // namespace KIVRA::TSHARK
