#include "replay/fleet/fleet_row.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <regex>
#include <system_error>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

constexpr const char* requested = "requested";
constexpr const char* granted = "granted";
constexpr const char* broadcast = "broadcast";
constexpr const char* configured = "configured";

bool is_number(const std::string& text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && behind == end;
}

std::string number_text(double number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

/// A capture's summary, with nothing in it where there is none.
class told_by {
  public:
    explicit told_by(const capture_result& result) : result_(result) {}

    const capture_result& result() const { return result_; }

    /// A member's text; numbers in the fewest digits that give the same number again.
    std::string at(const char* path) const {
        const json::json_pointer place(path);
        if (!result_.summary || !result_.summary->contains(place)) {
            return {};
        }
        const json& value = result_.summary->at(place);
        return value.is_string()         ? value.get<std::string>()
               : value.is_number_float() ? number_text(value.get<double>())
                                         : value.dump();
    }

    /// As `at`, of captures with records.
    std::string of_records(const char* path) const {
        return has_records() ? at(path) : std::string();
    }

    bool has_records() const {
        const auto records = at("/records/records");
        return !records.empty() && records != "0";
    }

    const json* setting(std::string_view name, std::string_view role) const {
        if (!result_.summary) {
            return nullptr;
        }
        const json& settings = result_.summary->at("settings");
        const auto found = std::ranges::find_if(settings, [&](const json& entry) {
            return entry.at("name") == name && entry.at("role") == role;
        });
        return found == settings.end() ? nullptr : &*found;
    }

    /// The value in force as text, if it is known what it means.
    std::string text(std::string_view name, std::string_view role) const {
        const json* const entry = setting(name, role);
        if (entry == nullptr || !entry->at("in_force").value("known", true)) {
            return {};
        }
        return entry->at("in_force").at("value");
    }

    /// The same, if it is a number in this unit.
    std::string number(std::string_view name, std::string_view role,
                       std::string_view unit = "") const {
        auto value = text(name, role);
        return is_number(value) && setting(name, role)->at("in_force").at("unit") == unit
                   ? value
                   : std::string();
    }

    /// The last accept of an attach or a tracking area update; 0 for none.
    std::uint64_t accepted_in() const {
        return result_.summary ? result_.summary->at("registration").value("accepted_in", 0U) : 0;
    }

    /// Whether an accept granted it, and a later one did not. What ends with the registration alone
    /// was granted all the same.
    bool is_left_out(std::string_view name) const {
        const json* const given = setting(name, granted);
        const std::uint64_t ended_in = given == nullptr ? 0 : given->value("ended_in", 0U);
        return ended_in != 0 && ended_in <= accepted_in();
    }

    std::string granted_number(std::string_view name) const {
        return is_left_out(name) ? std::string() : number(name, granted, "s");
    }

    /// How many messages came whose name begins so.
    std::uint64_t messages(std::string_view beginning) const {
        std::uint64_t sum = 0;
        if (result_.summary) {
            for (const auto& [name, count] : result_.summary->at("messages").items()) {
                sum += name.starts_with(beginning) ? count.get<std::uint64_t>() : 0;
            }
        }
        return sum;
    }

  private:
    const capture_result& result_;
};

std::string status_of(const told_by& told) {
    constexpr int broken_off = 2;
    const int status = told.result().exit_status;
    if (status == 0) {
        return "ok";
    }
    if (status == 1) {
        return told.has_records() ? "records failed" : "no records";
    }
    if (status == broken_off) {
        return told.has_records() ? "broken off" : "unreadable";
    }
    return "crashed";
}

std::string error_of(const told_by& told) {
    return status_of(told) == "crashed" && told.result().error.empty()
               ? "ended with status " + std::to_string(told.result().exit_status)
               : told.result().error;
}

/// "262/02 Vodafone D2 GmbH, Germany", of several networks that a cell broadcasts the first.
struct network {
    std::string codes;
    std::string names;
};

network network_of(const told_by& told) {
    static const std::regex form(R"((\d{3}/\d{2,3})(?: (.*?))?(?:, \d{3}/\d{2,3}(?: .*)?)?)");
    auto text = told.text("operator", granted);
    if (text.empty()) {
        text = told.text("operator", broadcast);
    }
    std::smatch parts;
    return std::regex_match(text, parts, form) ? network{parts[1], parts[2]} : network{};
}

std::string operator_of(const told_by& told) {
    return network_of(told).names;
}

std::string codes_of(const told_by& told) {
    return network_of(told).codes;
}

/// The first that is not empty.
std::string either(std::string first, std::string second) {
    return first.empty() ? std::move(second) : std::move(first);
}

std::string tracking_area_of(const told_by& told) {
    return either(told.number("tracking area code", granted),
                  told.number("tracking area code", broadcast));
}

std::string psm_of(const told_by& told) {
    const bool asked = !told.number("T3324", requested, "s").empty();
    if (told.is_left_out("T3324")) {
        return "ended";
    }
    if (!told.number("T3324", granted, "s").empty()) {
        return "granted";
    }
    if (told.text("T3324", granted) == "deactivated") {
        return "deactivated";
    }
    if (asked) {
        const json* const request = told.setting("T3324", requested);
        return request->at("in_force").at("record") < told.accepted_in() ? "not granted"
                                                                         : "no answer";
    }
    const bool there_was_a_request =
        told.messages("Attach request") + told.messages("Tracking area update request") != 0;
    return there_was_a_request ? "not requested" : "";
}

std::string paging_repetitions_of(const told_by& told) {
    return either(told.number("MPDCCH repetitions for paging", broadcast),
                  told.number("NPDCCH repetitions for paging", broadcast));
}

bool drx_is_released(const told_by& told) {
    return told.text("connected-mode DRX", configured) == "released";
}

std::string long_cycle_of(const told_by& told) {
    return drx_is_released(told) ? "" : told.number("long DRX cycle", configured, "ms");
}

/// A timer that LTE counts in PDCCH subframes and NB-IoT in PDCCH periods.
std::string timer_of(const told_by& told, std::string_view name, std::string_view unit) {
    return drx_is_released(told) ? "" : told.number(name, configured, unit);
}

std::string area_updates_of(const told_by& told) {
    return told.has_records() ? std::to_string(told.messages("Tracking area update request")) : "";
}

std::string profile_written(const told_by& told) {
    const auto written = told.at("/profile/written");
    return written == "true" ? "yes" : written == "false" ? "no" : "";
}

struct column {
    std::string_view name;
    std::string (*cell)(const told_by& told);
};

/// Behind the capture's name. The order and the names stay as they are; new columns go to the end.
constexpr std::array columns{
    column{"status", status_of},
    column{"error", error_of},
    column{"begin", [](const told_by& told) { return told.of_records("/measured/begin"); }},
    column{"end", [](const told_by& told) { return told.of_records("/measured/end"); }},
    column{"duration_s",
           [](const told_by& told) { return told.of_records("/measured/duration_s"); }},
    column{"records", [](const told_by& told) { return told.at("/records/records"); }},
    column{"failed_records", [](const told_by& told) { return told.at("/records/failed"); }},
    column{"malformed", [](const told_by& told) { return told.at("/unreadable/malformed"); }},
    column{"operator", operator_of},
    column{"mcc_mnc", codes_of},
    column{"cell_identity",
           [](const told_by& told) { return told.number("cell identity", broadcast); }},
    column{"tracking_area", tracking_area_of},
    column{"psm", psm_of},
    column{"t3324_requested_s",
           [](const told_by& told) { return told.number("T3324", requested, "s"); }},
    column{"t3324_granted_s", [](const told_by& told) { return told.granted_number("T3324"); }},
    column{"t3412_extended_requested_s",
           [](const told_by& told) { return told.number("T3412 extended", requested, "s"); }},
    column{"t3412_extended_granted_s",
           [](const told_by& told) { return told.granted_number("T3412 extended"); }},
    column{"t3412_granted_s",
           [](const told_by& told) { return told.number("T3412", granted, "s"); }},
    column{"edrx_requested_s",
           [](const told_by& told) { return told.number("eDRX cycle", requested, "s"); }},
    column{"edrx_granted_s", [](const told_by& told) { return told.granted_number("eDRX cycle"); }},
    column{"paging_time_window_requested_s",
           [](const told_by& told) { return told.number("paging time window", requested, "s"); }},
    column{"paging_time_window_granted_s",
           [](const told_by& told) { return told.granted_number("paging time window"); }},
    column{"paging_cycle_s",
           [](const told_by& told) { return told.number("default paging cycle", broadcast, "s"); }},
    column{"paging_repetitions", paging_repetitions_of},
    column{"drx_long_cycle_ms", long_cycle_of},
    column{
        "drx_on_duration_subframes",
        [](const told_by& told) { return timer_of(told, "on-duration timer", "PDCCH subframes"); }},
    column{
        "drx_on_duration_periods",
        [](const told_by& told) { return timer_of(told, "on-duration timer", "PDCCH periods"); }},
    column{"drx_inactivity_subframes",
           [](const told_by& told) {
               return timer_of(told, "DRX inactivity timer", "PDCCH subframes");
           }},
    column{"drx_inactivity_periods",
           [](const told_by& told) {
               return timer_of(told, "DRX inactivity timer", "PDCCH periods");
           }},
    column{"apn", [](const told_by& told) { return told.text("APN", granted); }},
    column{"pdn_type", [](const told_by& told) { return told.text("PDN type", granted); }},
    column{"emm_cause", [](const told_by& told) { return told.text("EMM cause", granted); }},
    column{"esm_cause", [](const told_by& told) { return told.text("ESM cause", granted); }},
    column{"connections",
           [](const told_by& told) { return told.of_records("/measured/connected/count"); }},
    column{"connected_median_s",
           [](const told_by& told) { return told.at("/measured/connected/median_s"); }},
    column{
        "silence_before_release_median_s",
        [](const told_by& told) { return told.at("/measured/silence_before_release/median_s"); }},
    column{"idle_median_s", [](const told_by& told) { return told.at("/measured/idle/median_s"); }},
    column{"time_connected_percent",
           [](const told_by& told) { return told.at("/measured/time_connected_percent"); }},
    column{"paging", [](const told_by& told) { return told.of_records("/measured/paging"); }},
    column{"area_updates", area_updates_of},
    column{"profile_written", profile_written},
    // The last: see set_page.
    column{"page", [](const told_by&) { return std::string(); }},
};

}  // namespace

std::vector<std::string_view> fleet_columns() {
    std::vector<std::string_view> names{"capture"};
    std::ranges::transform(columns, std::back_inserter(names), &column::name);
    return names;
}

fleet_row row_of(const std::string& capture, const capture_result& result) {
    const told_by told(result);
    fleet_row row{capture};
    for (const auto& column : columns) {
        row.push_back(column.cell(told));
    }
    return row;
}

void set_page(fleet_row& row, std::string page) {
    row.back() = std::move(page);
}

const std::string& cell_of(const fleet_row& row, std::string_view column) {
    const auto names = fleet_columns();
    return row.at(static_cast<std::size_t>(std::ranges::find(names, column) - names.begin()));
}

}  // namespace KIVRA::TSHARK::REPLAY
