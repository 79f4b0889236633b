#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <gtest/gtest.h>

#include "platform/console/c_stream.h"
#include "platform/console/input_stream.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

using TESTING::write_file;

/// The writing end of a named pipe that nobody else has opened yet.
class named_pipe {
  public:
    named_pipe() {
        EXPECT_EQ(mkfifo("pipe", 0600), 0);
        // Reads and writes, so that opening does not wait for the other end.
        descriptor_ = ::open("pipe", O_RDWR | O_CLOEXEC);
        EXPECT_GE(descriptor_, 0);
    }
    ~named_pipe() { close(); }
    named_pipe(const named_pipe&) = delete;
    named_pipe& operator=(const named_pipe&) = delete;

    void write(std::string_view text) const {
        EXPECT_EQ(::write(descriptor_, text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }
    void close() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
        descriptor_ = -1;
    }

  private:
    int descriptor_ = -1;
};

/// Reads that many bytes with C's functions, or to the end.
std::string read(input_stream& source, std::size_t size) {
    c_stream adapter(source);
    std::FILE* const stream = adapter.open();
    EXPECT_EQ(std::setvbuf(stream, nullptr, _IONBF, 0), 0);
    std::string text(size, '\0');
    text.resize(std::fread(text.data(), 1, size, stream));
    EXPECT_EQ(std::fclose(stream), 0);
    return text;
}

std::string read_available(input_stream& source, std::size_t size = 100) {
    std::string text(size, '\0');
    text.resize(source.read_available(text));
    return text;
}

class input_streams : public TESTING::scratch_test {};

TEST_F(input_streams, read_a_file_again_after_they_were_rewound) {
    write_file("file", "one two three");
    input_stream source("file", {});
    EXPECT_EQ(read(source, 7), "one two");
    source.rewind();
    EXPECT_EQ(source.position(), 0U);
    EXPECT_EQ(read(source, 100), "one two three");
    EXPECT_EQ(source.position(), 13U);
}

TEST_F(input_streams, rewind_a_file_to_where_the_first_reading_began) {
    write_file("file", "one two three");
    const int input = ::open("file", O_RDONLY);
    ASSERT_EQ(::lseek(input, 4, SEEK_SET), 4);
    const int former = ::dup(STDIN_FILENO);
    ASSERT_EQ(::dup2(input, STDIN_FILENO), STDIN_FILENO);
    {
        input_stream source("", {});
        EXPECT_EQ(read(source, 3), "two");
        source.rewind();
        EXPECT_EQ(read(source, 100), "two three");
    }
    ::dup2(former, STDIN_FILENO);
    ::close(former);
    ::close(input);
}

TEST_F(input_streams, read_a_pipe_again_after_they_were_rewound) {
    named_pipe pipe;
    input_stream source("pipe", {});
    pipe.write("one two ");
    EXPECT_EQ(read(source, 3), "one");
    EXPECT_EQ(read(source, 1), " ");
    source.rewind();
    EXPECT_EQ(source.position(), 0U);
    pipe.write("three");
    pipe.close();
    EXPECT_EQ(read(source, 100), "one two three");
    EXPECT_EQ(source.position(), 13U);
}

TEST_F(input_streams, give_what_is_in_memory_before_what_is_in_the_pipe) {
    named_pipe pipe;
    input_stream source("pipe", {});
    pipe.write("onetwo");
    EXPECT_EQ(read(source, 3), "one");
    source.rewind();
    EXPECT_EQ(read_available(source, 2), "on");
    EXPECT_EQ(read_available(source), "e");
    EXPECT_EQ(read_available(source), "two");
}

TEST_F(input_streams, give_what_there_is_without_waiting) {
    named_pipe pipe;
    input_stream source("pipe", [] { FAIL(); });
    EXPECT_EQ(read_available(source), "");
    EXPECT_FALSE(source.at_end());
    pipe.write("text");
    EXPECT_EQ(read_available(source, 3), "tex");
    EXPECT_EQ(read_available(source), "t");
    EXPECT_EQ(read_available(source), "");
    EXPECT_FALSE(source.at_end());
}

TEST_F(input_streams, know_the_end_of_a_pipe) {
    named_pipe pipe;
    input_stream source("pipe", {});
    pipe.write("text");
    pipe.close();
    EXPECT_EQ(read_available(source), "text");
    EXPECT_FALSE(source.at_end());
    EXPECT_EQ(read_available(source), "");
    EXPECT_TRUE(source.at_end());
}

TEST_F(input_streams, know_the_end_of_a_file) {
    write_file("file", "text");
    input_stream source("file", {});
    EXPECT_EQ(read_available(source), "text");
    EXPECT_FALSE(source.at_end());
    EXPECT_EQ(read_available(source), "");
    EXPECT_TRUE(source.at_end());
}

TEST_F(input_streams, tell_which_of_them_are_files_of_a_disk) {
    write_file("file", "text");
    EXPECT_TRUE(input_stream("file", {}).is_regular_file());
    const named_pipe pipe;
    EXPECT_FALSE(input_stream("pipe", {}).is_regular_file());
}

TEST_F(input_streams, have_the_size_that_their_file_has_by_now) {
    write_file("file", "one");
    const input_stream source("file", {});
    EXPECT_EQ(source.size(), 3U);
    write_file("file", "one two");
    EXPECT_EQ(source.size(), 7U);
}

TEST_F(input_streams, announce_that_they_wait_when_nothing_is_in_memory) {
    named_pipe pipe;
    int waits = 0;
    input_stream source("pipe", [&] {
        ++waits;
        pipe.write("two");
    });
    pipe.write("one");
    EXPECT_EQ(read(source, 3), "one");
    EXPECT_EQ(waits, 0);
    source.rewind();
    EXPECT_EQ(read(source, 3), "one");
    EXPECT_EQ(waits, 0);
    EXPECT_EQ(read(source, 3), "two");
    EXPECT_EQ(waits, 1);
}

TEST_F(input_streams, announce_on_demand) {
    write_file("file", "text");
    int waits = 0;
    input_stream("file", [&] { ++waits; }).announce();
    EXPECT_EQ(waits, 1);
    input_stream("file", {}).announce();
}

TEST_F(input_streams, pass_on_what_the_callback_throws) {
    const named_pipe pipe;
    input_stream source("pipe", [] { throw std::logic_error("no more"); });
    std::string room(1, ' ');
    EXPECT_THROW(source.read(room), std::logic_error);
}

TEST_F(input_streams, end_a_c_stream_by_what_the_callback_throws) {
    const named_pipe pipe;
    input_stream source("pipe", [] { throw std::logic_error("no more"); });
    c_stream adapter(source);
    std::FILE* const stream = adapter.open();
    EXPECT_EQ(std::fgetc(stream), EOF);
    std::fclose(stream);
    EXPECT_THROW(adapter.rethrow(), std::logic_error);
    EXPECT_NO_THROW(adapter.rethrow());
}

TEST_F(input_streams, are_not_made_of_what_can_not_be_read) {
    EXPECT_THROW(input_stream("missing", {}), std::system_error);
    EXPECT_THROW(input_stream(".", {}), std::system_error);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
