#include "replay/trace/connection_log.h"

#include <algorithm>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::size_t most_connections = 1'000;

/// 3GPP TS 24.301, table 10.2.1: T3430, after which the modem repeats a request. A trace has one as
/// a NAS message and within an RRC message, too.
constexpr std::uint64_t shortest_update_interval = 15'000'000;

/// Time stamps may go back, as where captures follow each other: that is no duration.
void add_duration(duration_statistics& durations, std::uint64_t from, std::uint64_t to) {
    if (from <= to) {
        durations.add(to - from);
    }
}

}  // namespace

void duration_statistics::add(std::uint64_t duration) {
    constexpr std::size_t most_kept = 10'000;
    least_ = count_ == 0 ? duration : std::min(least_, duration);
    greatest_ = std::max(greatest_, duration);
    sum_ += duration;
    if (count_++ % step_ != 0) {
        return;
    }
    if (kept_.size() == most_kept) {
        // Every other one goes, and from now on comes.
        for (std::size_t i = 0; i < most_kept / 2; ++i) {
            kept_[i] = kept_[2 * i];
        }
        kept_.resize(most_kept / 2);
        step_ *= 2;
    }
    kept_.push_back(duration);
}

std::uint64_t duration_statistics::median() const {
    auto sorted = kept_;
    std::ranges::sort(sorted);
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

void connection_log::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    const std::uint64_t now = record.timestamp;
    begin_ = number == 1 ? now : std::min(begin_, now);
    end_ = std::max(end_, now);
    switch (result.message.event) {
        case message_event::connection_request:
            open(number, now, result.message.connection_cause);
            break;
        case message_event::connection_end:
            close(number, now);
            break;
        case message_event::paging:
            ++paging_;
            break;
        case message_event::update_request:
            update(now);
            [[fallthrough]];
        case message_event::content:
            if (open_) {
                open_->last_content = now;
            }
            break;
        case message_event::none:
            break;
    }
}

void connection_log::open(std::uint64_t number, std::uint64_t timestamp, const std::string& cause) {
    if (!open_ && last_) {
        add_duration(idle_, last_->end, timestamp);
    }
    incomplete_ += open_ ? 1 : 0;
    open_ = connection{.first_record = number,
                       .last_record = number,
                       .begin = timestamp,
                       .last_content = timestamp,
                       .end = timestamp,
                       .cause = cause};
}

void connection_log::close(std::uint64_t number, std::uint64_t timestamp) {
    if (!open_) {
        ++incomplete_;
        return;
    }
    open_->last_record = number;
    open_->end = timestamp;
    add_duration(connected_, open_->begin, timestamp);
    if (open_->last_content != open_->begin) {
        add_duration(inactivity_, open_->last_content, timestamp);
    }
    ++causes_[open_->cause.empty() ? "unknown" : open_->cause];
    if (connections_.size() < most_connections) {
        connections_.push_back(*open_);
    }
    last_ = *open_;
    open_.reset();
}

void connection_log::update(std::uint64_t timestamp) {
    if (last_update_ && timestamp >= *last_update_ &&
        timestamp - *last_update_ < shortest_update_interval) {
        return;
    }
    if (last_update_) {
        add_duration(between_updates_, *last_update_, timestamp);
    }
    last_update_ = timestamp;
}

std::optional<double> connection_log::share_connected() const {
    if (connected_.count() == 0 || begin_ >= end_) {
        return std::nullopt;
    }
    constexpr double percent = 100;
    return percent * static_cast<double>(connected_.sum()) / static_cast<double>(end_ - begin_);
}

}  // namespace KIVRA::TSHARK::REPLAY
