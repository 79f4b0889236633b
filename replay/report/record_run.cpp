#include "replay/report/record_run.h"

#include <algorithm>
#include <cstddef>

namespace KIVRA::TSHARK::REPLAY {

void record_run::add(std::uint64_t number, const std::string& name) {
    constexpr std::size_t most_names = 5;
    if (size_++ == 0) {
        first_ = number;
    }
    last_ = number;
    const auto known = std::ranges::find(
        names_, name, [](const auto& entry) -> const auto& { return entry.first; });
    if (known != names_.end()) {
        ++known->second;
    } else if (names_.size() < most_names) {
        names_.emplace_back(name, 1);
    } else {
        ++others_;
    }
}

std::string record_run::numbers() const {
    return std::to_string(first_) + '-' + std::to_string(last_);
}

std::string record_run::text() const {
    std::string text;
    for (const auto& [name, count] : names_) {
        text.append(text.empty() ? "" : "; ").append(std::to_string(count)).append(" x " + name);
    }
    if (others_ != 0) {
        text += "; " + std::to_string(others_) + " x others";
    }
    return text;
}

}  // namespace KIVRA::TSHARK::REPLAY
