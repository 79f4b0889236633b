#include "replay/input/capture_stream.h"

namespace KIVRA::TSHARK::REPLAY {

capture_stream::capture_stream(std::span<const std::filesystem::path> captures,
                               const std::function<void()>& before_waiting) {
    for (const auto& file : captures) {
        captures_.emplace_back(file, before_waiting);
    }
}

std::optional<trace_record> capture_stream::next() {
    while (current_ < captures_.size()) {
        auto& source = captures_[current_];
        std::optional<trace_record> record;
        try {
            record = source.next();
        } catch (const capture_error&) {
            size_of_finished_ += source.size();
            ++current_;
            throw;
        }
        if (record) {
            return record;
        }
        size_of_finished_ += source.size();
        ++current_;
    }
    return std::nullopt;
}

std::uint64_t capture_stream::size() const {
    std::uint64_t sum = 0;
    for (const auto& source : captures_) {
        if (source.size() == 0) {
            return 0;
        }
        sum += source.size();
    }
    return sum;
}

std::uint64_t capture_stream::position() const {
    return size_of_finished_ + (current_ < captures_.size() ? captures_[current_].position() : 0);
}

}  // namespace KIVRA::TSHARK::REPLAY
