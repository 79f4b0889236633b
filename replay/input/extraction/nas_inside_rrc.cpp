#include "replay/input/extraction/nas_inside_rrc.h"

#include <algorithm>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::uint64_t second = 1'000'000;
constexpr std::size_t most_waiting = 1'000;
/// How many are kept where time stamps don't go on.
constexpr std::size_t most_own = 2 * most_waiting;

std::uint64_t distance(std::uint64_t one, std::uint64_t other) {
    return one > other ? one - other : other - one;
}

}  // namespace

void nas_inside_rrc::add(extracted_record record) {
    lets_go_ = false;
    latest_ = record.timestamp;
    if (record.format == "nas-eps" && !record.is_inside_rrc) {
        own_.push_back({record.timestamp, record.payload});
    }
    waiting_.push_back(std::move(record));
    // The first record waiting may look back a second.
    const std::uint64_t oldest = waiting_.front().timestamp;
    while (!own_.empty() &&
           (own_.size() > most_own || (own_.front().timestamp + second < oldest))) {
        own_.pop_front();
    }
}

void nas_inside_rrc::let_go() {
    lets_go_ = true;
}

std::optional<extracted_record> nas_inside_rrc::next() {
    while (!waiting_.empty() && is_decided(waiting_.front())) {
        extracted_record first = std::move(waiting_.front());
        waiting_.pop_front();
        if (!first.is_inside_rrc || stands_alone(first)) {
            return first;
        }
    }
    return std::nullopt;
}

bool nas_inside_rrc::is_decided(const extracted_record& record) const {
    return !record.is_inside_rrc || lets_go_ || distance(latest_, record.timestamp) > second ||
           waiting_.size() > most_waiting || !stands_alone(record);
}

/// Whether the message has not come as a record of its own.
bool nas_inside_rrc::stands_alone(const extracted_record& record) const {
    return std::ranges::none_of(own_, [&record](const own_record& own) {
        return distance(own.timestamp, record.timestamp) <= second && own.payload == record.payload;
    });
}

}  // namespace KIVRA::TSHARK::REPLAY
