#include "replay/input/capture_stream.h"

#include <stdexcept>

namespace KIVRA::TSHARK::REPLAY {

capture_stream::capture_stream(std::span<const std::filesystem::path> captures,
                               std::span<const working_file> copies) {
    for (std::size_t i = 0; i < captures.size(); ++i) {
        if (copies.empty()) {
            captures_.emplace_back(captures[i]);
        } else {
            captures_.emplace_back(captures[i], copies[i]);
        }
    }
}

std::optional<trace_record> capture_stream::next() {
    while (current_ < captures_.size()) {
        auto& source = captures_[current_];
        std::optional<trace_record> record;
        try {
            record = source.next();
        } catch (const std::runtime_error&) {
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
