#include <windows.h>

#include <cstdint>

#include <gmock/gmock.h>

#include "platform/console/console.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

using namespace TESTING;
using testing::Optional;

class write_times_on_windows : public scratch_test {
  protected:
    static void set_write_time(const char* file, std::uint64_t time) {
        const HANDLE handle = CreateFileA(file, FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        const FILETIME written{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32U)};
        EXPECT_TRUE(SetFileTime(handle, nullptr, nullptr, &written));
        EXPECT_TRUE(CloseHandle(handle));
    }
};

TEST_F(write_times_on_windows, are_told_in_100_nanoseconds) {
    constexpr std::int64_t time = 134'300'000'012'345'678;
    write_file("file", "");
    set_write_time("file", time);
    EXPECT_THAT(write_time("file"), Optional(time));
}

TEST_F(write_times_on_windows, are_not_told_of_what_is_not_there) {
    EXPECT_EQ(write_time("file"), std::nullopt);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
