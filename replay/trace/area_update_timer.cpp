#include "replay/trace/area_update_timer.h"

#include <charconv>
#include <system_error>

namespace KIVRA::TSHARK::REPLAY {

const setting_entry* granted_update_timer(const setting_history& settings) {
    const auto* const extended = settings.find("T3412 extended", setting_role::granted);
    const bool is_there = extended != nullptr && !settings.is_left_out(*extended) &&
                          extended->last.value != "deactivated";
    return is_there ? extended : settings.find("T3412", setting_role::granted);
}

std::optional<area_update_timer> area_update_timer_of(const setting_history& settings) {
    const auto* const entry = granted_update_timer(settings);
    if (entry == nullptr) {
        return std::nullopt;
    }
    area_update_timer timer{
        .name = entry->name, .value = text_of(entry->last), .record = entry->last.record};
    const auto& [record, timestamp, value, unit, known] = entry->last;
    if (double seconds = 0;
        unit == "s" && known &&
        std::from_chars(value.data(), value.data() + value.size(), seconds).ec == std::errc()) {
        timer.seconds = seconds;
    }
    return timer;
}

}  // namespace KIVRA::TSHARK::REPLAY
