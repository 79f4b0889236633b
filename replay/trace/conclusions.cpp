#include "replay/trace/conclusions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

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
    const setting_entry* broadcast(std::string_view name) const {
        return settings_.find(name, setting_role::broadcast);
    }

    void add(std::string text, const setting_entry& basis) {
        found_.push_back({std::move(text), basis.last.record});
    }

    /// A setting that the network granted, and a later accept did not: it ends then (24.301, 5.3.11
    /// and 5.3.12). Accepts are known by their T3412.
    bool has_ended(const setting_entry* given) const {
        const auto* const accept = granted("T3412");
        return given != nullptr && accept != nullptr && accept->last_record > given->last_record;
    }

    void add_end(std::string_view what) {
        found_.push_back({std::string(what), granted("T3412")->last_record});
    }

    void about_power_saving() {
        const auto* const asked = requested("T3324");
        const auto* const given = granted("T3324");
        if (has_ended(given)) {
            add_end("PSM has ended: the last accept has no T3324.");
            return;
        }
        active_time_ = seconds_in(given);
        if (active_time_) {
            about_sleep(*given);
        } else if (given != nullptr) {
            add("PSM not granted: the network says T3324 " + given->last.value + '.', *given);
        } else if (asked != nullptr && asked->last.unit == "s") {
            about_refusal(*asked);
        } else if (const auto* const periodic = requested("T3412 extended")) {
            add("PSM not asked for: T3412 extended alone, without T3324, asks for none.",
                *periodic);
        }
    }

    void about_refusal(const setting_entry& asked) {
        const auto* const accept = granted("T3412");
        if (accept != nullptr && accept->last_record > asked.last.record) {
            found_.push_back({"PSM not granted: asked for with T3324 " + text_of(asked.last) +
                                  ", and the accept has no T3324.",
                              accept->last_record});
        } else {
            add("PSM asked for with T3324 " + text_of(asked.last) + "; no accept is in the trace.",
                asked);
        }
    }

    void about_sleep(const setting_entry& given) {
        const auto* const extended = granted("T3412 extended");
        // It takes the place of T3412, also where it is deactivated.
        const auto* const periodic =
            extended == nullptr || has_ended(extended) ? granted("T3412") : extended;
        std::string text = "PSM granted: after each release reachable for " +
                           readable_seconds(*active_time_) + ", which is T3324";
        if (const auto period = seconds_in(periodic)) {
            const double sleep = std::max(*period - *active_time_, 0.0);
            text += ", then asleep for up to " + readable_seconds(sleep) + ": " + periodic->name +
                    " asks for a tracking area update every " + readable_seconds(*period);
        } else if (periodic != nullptr) {
            text += ", then asleep until it has something to send: " + periodic->name + " is " +
                    periodic->last.value;
        }
        add(text + '.', given);
        if (const auto* const wanted = requested("T3324");
            wanted != nullptr && wanted->last.value != given.last.value) {
            add("The network changed T3324 from " + text_of(wanted->last) + " (requested) to " +
                    text_of(given.last) + '.',
                given);
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
        if (has_ended(given)) {
            add_end("eDRX has ended: the last accept grants none.");
            return;
        }
        const auto cycle = seconds_in(given);
        if (!cycle) {
            return;
        }
        uses_edrx_ = true;
        add("eDRX granted: paged once in " + readable_seconds(*cycle) +
                ", within its paging time window.",
            *given);
        if (broadcast("default paging cycle") != nullptr && broadcast("eDRX allowed") == nullptr &&
            broadcast("cell barred") != nullptr) {
            add("The cell does not broadcast that eDRX is allowed: the modem may not use it there.",
                *broadcast("cell barred"));
        }
        if (active_time_) {
            add(*active_time_ < *cycle
                    ? "PSM and eDRX together: T3324 ends before an eDRX cycle does, so a modem "
                      "that sleeps may never be paged."
                    : "PSM and eDRX go together: the eDRX cycle fits into T3324.",
                *given);
        }
    }

    void about_paging() {
        const auto* const cell = broadcast("default paging cycle");
        const auto cycle = seconds_in(cell);
        if (!cycle) {
            return;
        }
        const auto* const own = requested("UE-specific DRX cycle");
        const auto wanted = seconds_in(own);
        if (wanted && *wanted < *cycle) {
            add("The paging cycle is the modem's own, " + text_of(own->last) +
                    ": it is shorter than the cell's " + text_of(cell->last) + '.',
                *own);
        } else {
            add("The paging cycle is the cell's, " + text_of(cell->last) +
                    (uses_edrx_ ? ", within eDRX's window." : "."),
                *cell);
        }
    }

    const setting_history& settings_;
    std::vector<conclusion> found_;
    std::optional<double> active_time_;
    bool uses_edrx_ = false;
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
