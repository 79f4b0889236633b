#include "replay/trace/conclusions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "replay/trace/area_update_timer.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// A number without digits that say nothing.
std::string number_text(double number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

std::optional<double> seconds_in(const setting_entry* entry) {
    if (entry == nullptr || entry->last.unit != "s" || !entry->last.known) {
        return std::nullopt;
    }
    const std::string& text = entry->last.value;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

class reasoning {
  public:
    explicit reasoning(const setting_history& settings) : settings_(settings) {}

    std::vector<conclusion> take() && {
        about_power_saving();
        about_edrx();
        about_end();
        about_paging();
        return std::move(found_);
    }

  private:
    const setting_entry* requested(std::string_view name) const {
        return settings_.find(name, setting_role::requested);
    }
    const setting_entry* granted(std::string_view name) const {
        return settings_.find(name, setting_role::granted);
    }
    /// Null also for what another cell has broadcast.
    const setting_entry* broadcast(std::string_view name) const {
        const auto* const entry = settings_.find(name, setting_role::broadcast);
        return entry == nullptr || entry->ended_in != 0 ? nullptr : entry;
    }

    void add(std::string text, std::uint64_t record) {
        found_.push_back({std::move(text), record});
    }
    void add(std::string text, const setting_entry& basis) {
        add(std::move(text), basis.last.record);
    }

    /// Whether a later accept did not grant it any more (24.301, 5.3.11 and 5.3.12).
    bool is_left_out(const setting_entry* given) const {
        return given != nullptr && settings_.is_left_out(*given);
    }

    std::string end_text() const {
        return settings_.registration().ended_by == registration_event::reject
                   ? "the network rejects the modem"
                   : "the modem is detached";
    }

    void about_power_saving() {
        const auto* const asked = requested("T3324");
        const auto* const given = granted("T3324");
        if (is_left_out(given)) {
            add("PSM has ended: the last accept has no T3324.",
                settings_.registration().accepted_in);
            return;
        }
        active_time_ = seconds_in(given);
        if (active_time_) {
            about_sleep(*given);
            about_change("T3324");
            about_change("T3412 extended");
        } else if (given != nullptr) {
            add("PSM not granted: the network says T3324 " + given->last.value + '.', *given);
        } else if (asked != nullptr && asked->last.unit == "s") {
            about_refusal(*asked);
        } else if (const auto* const periodic = requested("T3412 extended")) {
            add("PSM not asked for: T3412 extended alone, without T3324, asks for none.",
                *periodic);
        } else if (asked != nullptr) {
            add("PSM not asked for: T3324 is " + text_of(asked->last) + " in the request.", *asked);
        }
    }

    void about_refusal(const setting_entry& asked) {
        const std::string with = "asked for with T3324 " + text_of(asked.last);
        const auto& [accepted_in, ended_in, ended_by] = settings_.registration();
        if (accepted_in > asked.last.record) {
            add("PSM not granted: " + with + ", and the accept has no T3324.", accepted_in);
        } else if (ended_in > asked.last.record) {
            add("PSM not granted: " + with + ", and then " + end_text() + '.', ended_in);
        } else {
            add("PSM " + with + "; no accept is in the trace.", asked);
        }
    }

    void about_sleep(const setting_entry& given) {
        const auto* const timer = granted_update_timer(settings_);
        const auto period = seconds_in(timer);
        std::string text = "PSM granted: after each release reachable for " +
                           readable_seconds(*active_time_) + ", which is T3324";
        // No updates: 24.301, 5.3.5.
        if (timer != nullptr && (timer->last.value == "deactivated" || period == 0.0)) {
            text += ", then asleep until it has something to send: " + timer->name + " is " +
                    text_of(timer->last);
        } else if (period && *period <= *active_time_) {
            text += ", and never asleep: " + timer->name +
                    " asks for a tracking area update every " + readable_seconds(*period);
        } else if (period) {
            text += ", then asleep for up to " + readable_seconds(*period - *active_time_) + ": " +
                    timer->name + " asks for a tracking area update every " +
                    readable_seconds(*period);
        }
        add(text + '.', given);
    }

    /// What the network grants otherwise than it was asked for, or not at all.
    void about_change(const char* name) {
        const auto* const wanted = requested(name);
        const auto* const given = granted(name);
        if (wanted == nullptr) {
            return;
        }
        const std::string asked = text_of(wanted->last);
        if (given == nullptr || is_left_out(given)) {
            if (settings_.registration().accepted_in > wanted->last.record) {
                add(std::string(name) + ' ' + asked + " was asked for, and not granted.", *wanted);
            }
        } else if (text_of(given->last) != asked) {
            add("The network changed " + std::string(name) + " from " + asked + " (requested) to " +
                    text_of(given->last) + '.',
                *given);
        }
    }

    void about_edrx() {
        const auto* const asked = requested("eDRX cycle");
        const auto* const given = granted("eDRX cycle");
        if (given == nullptr) {
            if (asked != nullptr) {
                add("eDRX asked for (" + text_of(asked->last) + "), and not granted in the trace.",
                    *asked);
            }
            return;
        }
        if (is_left_out(given)) {
            add("eDRX has ended: the last accept grants none.",
                settings_.registration().accepted_in);
            return;
        }
        const auto cycle = seconds_in(given);
        if (!cycle) {
            return;
        }
        edrx_cycle_ = cycle;
        add("eDRX granted: paged once in " + readable_seconds(*cycle) +
                (has_window() ? ", within its paging time window."
                              : ", which is the paging cycle, without a paging time window."),
            *given);
        about_change("eDRX cycle");
        if (has_window()) {
            about_change("paging time window");
        }
        about_permission();
        if (active_time_) {
            add(*active_time_ < *cycle
                    ? "PSM and eDRX together: T3324 ends before an eDRX cycle does, so a modem "
                      "that sleeps may never be paged."
                    : "PSM and eDRX go together: the eDRX cycle fits into T3324.",
                *given);
        }
    }

    /// The shortest cycle, of 512 radio frames, is a paging cycle as any (36.304, 7.1 and 7.3).
    bool has_window() const {
        constexpr double shortest = 5.12;
        return edrx_cycle_ && *edrx_cycle_ > shortest;
    }

    /// NB-IoT needs none (36.304, 7.3).
    void about_permission() {
        const auto* const sib1 = broadcast("cell barred");
        if (sib1 != nullptr && settings_.access() != radio_access::nb_s1 &&
            broadcast("default paging cycle") != nullptr && broadcast("eDRX allowed") == nullptr) {
            add("The cell does not broadcast that eDRX is allowed: the modem may not use it there.",
                *sib1);
        }
    }

    /// What was granted goes with the registration.
    void about_end() {
        if (settings_.registration().has_ended() && (active_time_ || edrx_cycle_)) {
            add("What was granted has ended: " + end_text() + '.',
                settings_.registration().ended_in);
        }
    }

    void about_paging() {
        const auto* const cell = broadcast("default paging cycle");
        const auto cycle = seconds_in(cell);
        if (!cycle || (edrx_cycle_ && !has_window())) {
            return;
        }
        if (const auto* const own = own_cycle(); own != nullptr && *seconds_in(own) < *cycle) {
            const bool is_least = own->role == setting_role::broadcast;
            add((is_least ? "The paging cycle is the least that the cell allows modems, "
                          : "The paging cycle is the modem's own, ") +
                    text_of(own->last) + ": it is shorter than the cell's " + text_of(cell->last) +
                    '.',
                *own);
        } else {
            add("The paging cycle is the cell's, " + text_of(cell->last) +
                    (edrx_cycle_ ? ", within eDRX's window." : "."),
                *cell);
        }
    }

    /// The modem's own cycle as far as the cell follows it (36.304, 7.1): in NB-IoT the one that
    /// was granted, and not below the least that the cell allows, if it allows any.
    const setting_entry* own_cycle() const {
        if (settings_.access() != radio_access::nb_s1) {
            const auto* const asked = requested("UE-specific DRX cycle");
            return seconds_in(asked) ? asked : nullptr;
        }
        const auto* const given = granted("UE-specific DRX cycle in NB-S1 mode");
        const auto* const least = broadcast("least UE-specific DRX cycle");
        const auto own = seconds_in(given);
        const auto allowed = seconds_in(least);
        if (!own || !allowed || is_left_out(given)) {
            return nullptr;
        }
        return *own < *allowed ? least : given;
    }

    const setting_history& settings_;
    std::vector<conclusion> found_;
    std::optional<double> active_time_;
    std::optional<double> edrx_cycle_;
};

}  // namespace

std::string readable_seconds(double seconds) {
    std::string text = number_text(seconds) + " s";
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    constexpr double day = 24 * hour;
    if (seconds < 2 * minute) {
        return text;
    }
    const auto in = [&](double unit, const char* name) {
        constexpr double tenths = 10;
        return text + " (" + number_text(std::round(tenths * seconds / unit) / tenths) + ' ' +
               name + ')';
    };
    return seconds < 2 * hour  ? in(minute, "min")
           : seconds < 4 * day ? in(hour, "h")
                               : in(day, "d");
}

std::vector<conclusion> conclusions_of(const setting_history& settings) {
    return reasoning(settings).take();
}

}  // namespace KIVRA::TSHARK::REPLAY
