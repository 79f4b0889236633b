#include "platform/console/input_stream.h"

#include <utility>

#include "platform/console/console.h"

namespace KIVRA::TSHARK::PLATFORM {

input_stream::input_stream(const std::filesystem::path& file, std::function<void()> before_waiting)
    : source_(file), before_waiting_(std::move(before_waiting)) {}

void input_stream::rewind() {
    if (source_.can_go_back()) {
        source_.go_back();
    }
    is_rewound_ = true;
    position_ = 0;
}

std::size_t input_stream::read_available(std::span<char> room) {
    std::size_t count = 0;
    if (is_repeating()) {
        count = beginning_.copy(room.data(), room.size(), repeated_);
        repeated_ += count;
    } else if (!is_broken_off()) {
        count = source_.read_available(room);
        if (!is_rewound_ && !source_.can_go_back()) {
            beginning_.append(room.data(), count);
        }
    }
    position_ += count;
    return count;
}

std::size_t input_stream::read(std::span<char> room) {
    std::size_t count = read_available(room);
    if (count == 0 && !at_end()) {
        announce();
    }
    while (count == 0 && !at_end()) {
        source_.wait();
        count = read_available(room);
    }
    return count;
}

bool input_stream::at_end() const {
    return !is_repeating() && (source_.at_end() || is_broken_off());
}

bool input_stream::is_broken_off() const {
    return interrupted() && !is_regular_file();
}

void input_stream::announce() const {
    if (before_waiting_) {
        before_waiting_();
    }
}

}  // namespace KIVRA::TSHARK::PLATFORM
