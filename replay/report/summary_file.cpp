#include "replay/report/summary_file.h"

#include <cerrno>
#include <cmath>
#include <fstream>
#include <string>

#include <nlohmann/json.hpp>

#include "replay/record/path_text.h"
#include "replay/record/record_format.h"
#include "replay/record/write_error.h"
#include "replay/report/formatting.h"
#include "replay/report/summary.h"
#include "replay/trace/area_update_timer.h"
#include "replay/trace/conclusions.h"
#include "replay/trace/profile_truth.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using json = nlohmann::ordered_json;

json counts_of(const tally& counts) {
    return {{"records", counts.records},
            {"with_result", counts.with_result},
            {"failed", counts.failed}};
}

json formats_of(const run_totals& totals) {
    json formats = json::object();
    for (const auto& [name, counts] : totals.formats) {
        auto& format = formats[name] = counts_of(counts);
        format["analysed"] = is_analysed(name);
        if (const auto nearest = nearest_analysed(name); !is_analysed(name) && !nearest.empty()) {
            format["nearest"] = nearest;
        }
    }
    return formats;
}

json messages_of(const run_totals& totals) {
    json messages = json::object();
    for (const auto& [name, count] : totals.messages) {
        messages[name] = count;
    }
    return messages;
}

json change_of(const setting_change& change) {
    json object{{"value", change.value}, {"unit", change.unit}};
    if (!change.known) {
        object["known"] = false;
    }
    object["record"] = change.record;
    object["time"] = iso_8601(change.timestamp);
    return object;
}

json settings_of(const setting_history& settings) {
    json list = json::array();
    for (const auto& entry : settings.entries()) {
        json object{{"name", entry.name},       {"role", text_of(entry.role)},
                    {"clause", entry.clause},   {"in_force", change_of(entry.last)},
                    {"changes", entry.changes}, {"last_record", entry.last_record},
                    {"history", json::array()}};
        for (const auto& change : entry.first) {
            object["history"].push_back(change_of(change));
        }
        if (entry.ended_in != 0) {
            object["ended_in"] = entry.ended_in;
        }
        list.push_back(object);
    }
    return list;
}

json registration_of(const registration_state& registration) {
    json object = json::object();
    if (registration.accepted_in != 0) {
        object["accepted_in"] = registration.accepted_in;
    }
    if (registration.ended_in != 0) {
        object["ended_in"] = registration.ended_in;
        object["ended_by"] =
            registration.ended_by == registration_event::reject ? "reject" : "detach";
    }
    return object;
}

/// Seconds with all digits that a time stamp has.
double seconds(std::uint64_t microseconds) {
    constexpr double microseconds_a_second = 1'000'000;
    return static_cast<double>(microseconds) / microseconds_a_second;
}

json durations_of(const duration_statistics& durations) {
    json object{{"count", durations.count()}};
    if (durations.count() != 0) {
        object["minimum_s"] = seconds(durations.least());
        object["median_s"] = seconds(durations.median());
        object["maximum_s"] = seconds(durations.greatest());
        object["sum_s"] = seconds(durations.sum());
    }
    return object;
}

json connections_of(const connection_log& log) {
    json list = json::array();
    for (const auto& connection : log.connections()) {
        json object{
            {"first_record", connection.first_record},
            {"last_record", connection.last_record},
            {"begin", iso_8601(connection.begin)},
            {"end", iso_8601(connection.end)},
            {"duration_s", seconds(connection.end - std::min(connection.begin, connection.end))}};
        if (!connection.cause.empty()) {
            object["cause"] = connection.cause;
        }
        list.push_back(object);
    }
    return list;
}

json measured_of(const trace& told) {
    const connection_log& log = told.connections;
    json object{{"begin", iso_8601(log.begin())},
                {"end", iso_8601(log.end())},
                {"duration_s", seconds(log.end() - std::min(log.begin(), log.end()))},
                {"connected", durations_of(log.connected())},
                {"silence_before_release", durations_of(log.inactivity())},
                {"idle", durations_of(log.idle())},
                {"between_area_updates", durations_of(log.between_updates())},
                {"causes", log.causes()},
                {"incomplete", log.incomplete()},
                {"paging", log.paging()},
                {"connections", connections_of(log)}};
    if (const auto share = log.share_connected()) {
        object["time_connected_percent"] = *share;
    }
    if (const auto timer = area_update_timer_of(told.settings)) {
        auto& due = object["area_update_timer"] = {{"name", timer->name}};
        if (timer->seconds) {
            due["value_s"] = *timer->seconds;
        }
        due["record"] = timer->record;
    }
    return object;
}

json profile_of(const run_totals& totals, const profile_file& profile) {
    json object{{"written", profile.written()}};
    if (!profile.is_temporary()) {
        object["file"] = text_of(profile.path());
    }
    if (!profile.written()) {
        object["reason"] = profile.obstacle().value_or(reason_for_no_profile(totals));
        return object;
    }
    const auto content = profile.read();
    auto& values = object["values"] = json::object();
    for (const auto& [name, value] : content) {
        values[name] = value;
    }
    auto& truths = object["from_the_trace"] = json::array();
    for (const auto& member : truth_beside(content, totals.told.sources, totals.told.settings)) {
        json truth{{"member", member.member}, {"value", member.value}, {"record", member.record}};
        if (!member.truth.empty()) {
            truth["truth"] = member.truth;
        }
        if (!member.difference.empty()) {
            truth["difference"] = member.difference;
        }
        truths.push_back(truth);
    }
    return object;
}

json conclusions_in(const setting_history& settings) {
    json list = json::array();
    for (const auto& [text, record] : conclusions_of(settings)) {
        list.push_back({{"text", text}, {"record", record}});
    }
    return list;
}

json diagnostics_of(const run_totals& totals) {
    json list = json::array();
    for (const auto& [text, entry] : totals.diagnostics) {
        list.push_back({{"text", text},
                        {"count", entry.count},
                        {"first_record", entry.first_record},
                        {"meaning", entry.help}});
    }
    return list;
}

}  // namespace

json json_of(const run_totals& totals, const profile_file& profile,
             const capture_content& captures) {
    return {{"records", counts_of(totals.all)},
            {"incomplete", captures.incomplete},
            {"formats", formats_of(totals)},
            {"messages", messages_of(totals)},
            {"unreadable",
             {{"malformed", totals.malformed.count},
              {"ciphered_nas", totals.ciphered.count},
              {"encrypted_rrc_packets", captures.encrypted_rrc}}},
            {"settings", settings_of(totals.told.settings)},
            {"registration", registration_of(totals.told.settings.registration())},
            {"measured", measured_of(totals.told)},
            {"conclusions", conclusions_in(totals.told.settings)},
            {"profile", profile_of(totals, profile)},
            {"diagnostics", diagnostics_of(totals)}};
}

void summary_file::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    totals_.add(number, record, result, details_of(result));
}

void summary_file::end(const capture_content& captures) {
    const auto text =
        json_of(totals_, profile_, captures).dump(2, ' ', false, json::error_handler_t::replace);
    errno = 0;
    std::ofstream file(file_, std::ios::binary | std::ios::trunc);
    file << text << '\n';
    if (!file.flush()) {
        throw write_error(text_of(file_), errno);
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
