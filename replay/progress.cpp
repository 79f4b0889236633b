#include "replay/progress.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::size_t bar_width = 30;
constexpr const char* clear_line = "\r\033[K";

}  // namespace

void progress::draw(std::uint64_t bytes_read, std::uint64_t records) {
    if (terminal_ == nullptr) {
        return;
    }
    *terminal_ << clear_line;
    if (total_ != 0) {
        const double share =
            std::min(1.0, static_cast<double>(bytes_read) / static_cast<double>(total_));
        const auto filled = static_cast<std::size_t>(share * bar_width);
        *terminal_ << '[' << std::string(filled, '#') << std::string(bar_width - filled, '.')
                   << "] " << std::setw(3) << static_cast<int>(share * 100) << "%  ";
    }
    *terminal_ << "record " << records << std::flush;
}

void progress::clear() {
    if (terminal_ != nullptr) {
        *terminal_ << clear_line << std::flush;
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
