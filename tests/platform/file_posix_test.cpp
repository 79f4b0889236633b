#include <fcntl.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

namespace fs = std::filesystem;

class files_on_posix : public TESTING::scratch_test {};

TEST_F(files_on_posix, are_for_everybody_whom_the_mask_lets) {
    const mode_t former = ::umask(022);
    write_file("file", "content");
    ::umask(former);
    EXPECT_EQ(fs::status("file").permissions(), fs::perms(0644));
}

TEST_F(files_on_posix, leave_no_descriptor) {
    const int before = ::dup(STDIN_FILENO);
    ::close(before);
    write_file("file", "content");
    const int after = ::dup(STDIN_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST_F(files_on_posix, are_not_emptied_before_they_are_written) {
    const int sealed = ::memfd_create("file", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    const std::string path = "/proc/self/fd/" + std::to_string(sealed);
    write_file(path, "former");
    ASSERT_EQ(::fcntl(sealed, F_ADD_SEALS, F_SEAL_SHRINK), 0);
    write_file(path, "latter");
    EXPECT_EQ(TESTING::read_file(path), "latter");
    ::close(sealed);
}

TEST_F(files_on_posix, are_written_to_the_end_after_an_interruption) {
    struct sigaction action {};
    struct sigaction former {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &former), 0);
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    const int reader = ::open("pipe", O_RDONLY | O_NONBLOCK);
    ASSERT_NE(reader, -1);
    const std::string content(3L * ::fcntl(reader, F_GETPIPE_SZ), 'x');

    std::string arrived;
    std::thread other([&, writer = ::pthread_self()] {
        // Interrupts the write when the pipe is full, and then reads all that comes.
        for (int waiting = 0; waiting < ::fcntl(reader, F_GETPIPE_SZ);) {
            ASSERT_EQ(::ioctl(reader, FIONREAD, &waiting), 0);
        }
        ASSERT_EQ(::pthread_kill(writer, SIGUSR1), 0);
        ASSERT_EQ(::fcntl(reader, F_SETFL, 0), 0);
        std::string room(content.size(), '\0');
        for (ssize_t count = 1; count > 0;) {
            count = ::read(reader, room.data(), room.size());
            arrived.append(room, 0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    });
    write_file("pipe", content);
    other.join();
    ::close(reader);
    ASSERT_EQ(::sigaction(SIGUSR1, &former, nullptr), 0);
    EXPECT_EQ(arrived, content);
}

TEST_F(files_on_posix, are_what_a_link_leads_to) {
    fs::create_directory("folder");
    fs::create_symlink("folder", "link");
    fs::create_symlink("nothing", "loose link");
    std::error_code error;
    EXPECT_EQ(file_status("link", error).type(), fs::file_type::directory);
    EXPECT_EQ(file_status("loose link", error).type(), fs::file_type::not_found);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
