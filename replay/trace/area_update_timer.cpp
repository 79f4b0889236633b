#include "replay/trace/area_update_timer.h"

#include <charconv>
#include <system_error>

namespace KIVRA::TSHARK::REPLAY {

std::optional<area_update_timer> area_update_timer_of(const setting_history& settings) {
    const auto* const plain = settings.find("T3412", setting_role::granted);
    const auto* const extended = settings.find("T3412 extended", setting_role::granted);
    // The extended one takes T3412's place until an accept comes without it (3GPP
    // TS 24.301, 5.3.5).
    const bool is_extended =
        extended != nullptr && (plain == nullptr || plain->last_record <= extended->last_record);
    const auto* const entry = is_extended ? extended : plain;
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
