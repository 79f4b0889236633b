#include "replay/report/novelty.h"

#include <cstddef>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A trace has few names; what a broken one has beyond that is not remembered, and not new.
constexpr std::size_t most_names = 1'000;

bool is_first(std::set<std::string>& known, const std::string& text) {
    return known.size() < most_names && known.insert(text).second;
}

}  // namespace

bool novelty::is_new(const outcome& result, const std::vector<detail_value>& details) {
    bool found = result.failure || result.message.is_malformed || result.message.is_procedure;
    found = is_first(names_, result.message.name) || found;
    for (const auto& [name, value] : details) {
        const auto known = values_.find(name);
        if (known == values_.end() || known->second != value) {
            values_[name] = value;
            found = true;
        }
    }
    for (const auto& message : result.log) {
        found = (!is_timing(message) && is_first(log_texts_, message.text)) || found;
    }
    return found;
}

}  // namespace KIVRA::TSHARK::REPLAY
