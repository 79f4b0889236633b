#include "replay/runner/tshark_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "analysis/tshark_command.h"
#include "platform/platform.h"
#include "replay/input/working_file.h"

namespace KIVRA::TSHARK::REPLAY {

tshark_output::tshark_output(const std::filesystem::path& executable,
                             const std::filesystem::path& capture) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "can't make a pipe for tshark");
    }
    reading_end_ = ends[0];
    writing_end_ = ends[1];
    // The pipe ends when tshark and this end of it are gone.
    waiting_ = std::thread([this, executable, capture] {
        start_error_ = PLATFORM::run_program(executable, ANALYSIS::tshark_arguments(capture),
                                             path_of_descriptor(writing_end_));
        close(writing_end_);
    });
}

tshark_output::~tshark_output() {
    close(reading_end_);
    if (waiting_.joinable()) {
        waiting_.join();
    }
}

std::size_t tshark_output::read(std::span<char> place) {
    ssize_t count = 0;
    do {
        count = ::read(reading_end_, place.data(), place.size());
    } while (count < 0 && errno == EINTR);
    if (count > 0) {
        return static_cast<std::size_t>(count);
    }
    if (waiting_.joinable()) {
        waiting_.join();
    }
    if (start_error_) {
        throw std::runtime_error("invoking tshark failed with error: " +
                                 std::to_string(*start_error_));
    }
    return 0;
}

}  // namespace KIVRA::TSHARK::REPLAY
