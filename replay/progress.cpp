#include "replay/progress.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

namespace {

using seconds = std::chrono::duration<double>;

constexpr std::size_t bar_width = 30;
constexpr const char* clear_line = "\r\033[K";
constexpr std::chrono::milliseconds drawing_interval{100};

std::string bar(double share) {
    const auto filled = static_cast<std::size_t>(share * bar_width);
    std::ostringstream text;
    text << '[' << std::string(filled, '#') << std::string(bar_width - filled, '.') << "] "
         << std::setw(3) << static_cast<int>(share * 100) << "%  ";
    return text.str();
}

/// "1:05" for 65 seconds.
std::string minutes(seconds duration) {
    const auto whole = std::llround(duration.count());
    std::ostringstream text;
    text << whole / 60 << ':' << std::setfill('0') << std::setw(2) << whole % 60;
    return text.str();
}

}  // namespace

void progress::draw(std::uint64_t bytes_read, std::uint64_t count) {
    if (terminal_ == nullptr || now_() < next_drawing_) {
        return;
    }
    const auto now = now_();
    next_drawing_ = now + drawing_interval;
    drawn_ = true;
    const seconds taken = now - start_;
    const double share =
        total_ == 0 ? 0
                    : std::min(1.0, static_cast<double>(bytes_read) / static_cast<double>(total_));
    *terminal_ << clear_line << (total_ == 0 ? "" : bar(share)) << counted_ << ' ' << count;
    if (taken.count() > 0) {
        *terminal_ << ", " << std::fixed << std::setprecision(1)
                   << static_cast<double>(count) / taken.count() << "/s";
        if (share > 0) {
            *terminal_ << ", " << minutes(taken * (1 - share) / share) << " left";
        }
    }
    *terminal_ << std::flush;
}

void progress::clear() {
    if (drawn_) {
        *terminal_ << clear_line << std::flush;
        drawn_ = false;
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
