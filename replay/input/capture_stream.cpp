#include "replay/input/capture_stream.h"

#include "replay/input/open_capture.h"

namespace KIVRA::TSHARK::REPLAY {

capture_stream::capture_stream(std::span<const std::filesystem::path> captures,
                               const std::filesystem::path& tshark,
                               const extraction_options& options,
                               const std::function<void()>& before_waiting) {
    for (const auto& file : captures) {
        captures_.push_back({name_of(file), open_capture(file, tshark, options, before_waiting)});
    }
}

std::optional<trace_record> capture_stream::next() {
    while (current_ < captures_.size()) {
        const auto& [name, source] = captures_[current_];
        std::optional<trace_record> record;
        try {
            record = source->next();
        } catch (const capture_error&) {
            go_on();
            throw;
        }
        if (record) {
            current_has_records_ = true;
            return record;
        }
        const bool had_records = current_has_records_;
        go_on();
        if (!had_records) {
            throw no_records(name, source->content());
        }
    }
    return std::nullopt;
}

void capture_stream::go_on() {
    size_of_finished_ += captures_[current_].source->size();
    current_has_records_ = false;
    ++current_;
}

capture_content capture_stream::content() const {
    capture_content sum;
    for (const auto& [name, source] : captures_) {
        const auto content = source->content();
        sum.packets += content.packets;
        sum.encrypted_rrc += content.encrypted_rrc;
    }
    return sum;
}

std::uint64_t capture_stream::size() const {
    std::uint64_t sum = 0;
    for (const auto& [name, source] : captures_) {
        if (source->size() == 0) {
            return 0;
        }
        sum += source->size();
    }
    return sum;
}

std::uint64_t capture_stream::position() const {
    const std::uint64_t position =
        current_ < captures_.size() ? captures_[current_].source->position() : 0;
    return size_of_finished_ + position;
}

}  // namespace KIVRA::TSHARK::REPLAY
