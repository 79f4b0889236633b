#include <windows.h>

#include <array>
#include <string>
#include <string_view>
#include <system_error>

#include <gtest/gtest.h>

#include "platform/console/input_stream.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

/// A pipe that is the standard input while it lives.
class input_pipe {
  public:
    input_pipe() {
        CreatePipe(&read_, &write_, nullptr, 0);
        SetStdHandle(STD_INPUT_HANDLE, read_);
    }
    ~input_pipe() {
        SetStdHandle(STD_INPUT_HANDLE, former_);
        close();
        CloseHandle(read_);
    }
    input_pipe(const input_pipe&) = delete;
    input_pipe& operator=(const input_pipe&) = delete;

    void write(std::string_view text) {
        DWORD written = 0;
        WriteFile(write_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        EXPECT_EQ(written, text.size());
    }

    /// The input's end.
    void close() {
        if (write_ != nullptr) {
            CloseHandle(write_);
            write_ = nullptr;
        }
    }

  private:
    HANDLE former_ = GetStdHandle(STD_INPUT_HANDLE);
    HANDLE read_ = nullptr;
    HANDLE write_ = nullptr;
};

std::string read(input_stream& stream) {
    std::array<char, 100> room{};
    return {room.data(), stream.read(room)};
}

TEST(input_streams_on_windows, say_that_they_wait_before_they_do) {
    input_pipe pipe;
    int waits = 0;
    input_stream stream("", [&] {
        // The reading thread may not have seen the last text yet: then there is one wait more.
        if (++waits == 1) {
            pipe.write("late");
        }
    });
    EXPECT_EQ(read(stream), "late");
    EXPECT_GE(waits, 1);
}

TEST(input_streams_on_windows, end_with_the_pipe) {
    input_pipe pipe;
    input_stream stream("", nullptr);
    pipe.write("all");
    pipe.close();
    EXPECT_EQ(read(stream), "all");
    EXPECT_EQ(read(stream), "");
    EXPECT_TRUE(stream.at_end());
    EXPECT_EQ(stream.position(), 3U);
}

TEST(input_streams_on_windows, repeat_what_was_read_of_a_pipe) {
    input_pipe pipe;
    input_stream stream("", nullptr);
    pipe.write("begin");
    EXPECT_EQ(read(stream), "begin");
    stream.rewind();
    pipe.write("rest");
    EXPECT_EQ(read(stream), "begin");
    EXPECT_EQ(read(stream), "rest");
    EXPECT_FALSE(stream.is_regular_file());
    EXPECT_EQ(stream.size(), 0U);
}

TEST(input_streams_on_windows, may_go_while_a_pipe_gives_nothing) {
    const input_pipe pipe;
    input_stream stream("", nullptr);
    std::array<char, 100> room{};
    // Starts a read that nothing but the end of the stream ends.
    EXPECT_EQ(stream.read_available(room), 0U);
    EXPECT_FALSE(stream.at_end());
}

class input_files_on_windows : public TESTING::scratch_test {};

TEST_F(input_files_on_windows, are_read_twice) {
    TESTING::write_file("file", "content");
    input_stream stream(L"file", nullptr);
    EXPECT_TRUE(stream.is_regular_file());
    EXPECT_EQ(stream.size(), 7U);
    EXPECT_EQ(read(stream), "content");
    stream.rewind();
    EXPECT_EQ(read(stream), "content");
    EXPECT_EQ(read(stream), "");
    EXPECT_TRUE(stream.at_end());
}

TEST_F(input_files_on_windows, are_neither_missing_nor_folders) {
    EXPECT_THROW(input_stream("missing", nullptr), std::system_error);
    EXPECT_THROW(input_stream(scratch(), nullptr), std::system_error);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
