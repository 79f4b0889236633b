#include "replay/input/working_file.h"

#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace KIVRA::TSHARK::REPLAY {

namespace {

[[noreturn]] void fail() {
    throw std::runtime_error("can't write a temporary file: " +
                             std::generic_category().message(errno));
}

}  // namespace

working_file::working_file() : stream_(std::tmpfile()) {
    if (stream_ == nullptr) {
        fail();
    }
}

void working_file::write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_.get()) != bytes.size()) {
        fail();
    }
}

void working_file::flush() {
    if (std::fflush(stream_.get()) != 0) {
        fail();
    }
}

std::filesystem::path working_file::path() const {
    return path_of_descriptor(fileno(stream_.get()));
}

std::filesystem::path path_of_descriptor(int descriptor) {
    return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor);
}

}  // namespace KIVRA::TSHARK::REPLAY
