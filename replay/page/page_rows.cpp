#include "replay/page/page_rows.h"

#include <vector>

#include "replay/page/page_json.h"
#include "replay/report/record_details.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using json = nlohmann::ordered_json;

/// Compact JSON for a text of the page, which is read when somebody wants to see it.
std::string compact(const json& value) {
    return value.empty() ? "" : value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string told_by(const outcome& result) {
    std::string text;
    for (const auto& [name, value] : details_of(result)) {
        text.append(text.empty() ? "" : ", ").append(name).append(1, ' ').append(value);
    }
    return text;
}

json settings_in(const outcome& result) {
    json list = json::array();
    for (const auto& told : result.settings) {
        list.push_back(
            {told.name, told.value, told.unit, text_of(told.role), told.clause, told.known});
    }
    return list;
}

json log_of(const outcome& result) {
    json list = json::array();
    for (const auto& message : result.log) {
        if (!is_timing(message)) {
            list.push_back(message.text);
        }
    }
    return list;
}

int marks_of(const message_description& message) {
    int marks = message.is_malformed ? marks_malformed : 0;
    marks += message.is_ciphered ? marks_ciphered : 0;
    marks += message.is_procedure ? marks_procedure : 0;
    if (message.registration == registration_event::accept) {
        marks += marks_registration_accept;
    } else if (message.registration != registration_event::none) {
        marks += marks_registration_end;
    }
    switch (message.event) {
        case message_event::connection_request:
            return marks + marks_connection_request;
        case message_event::connection_end:
            return marks + marks_connection_end;
        case message_event::update_request:
            return marks + marks_update_request;
        default:
            return marks;
    }
}

/// Time stamps may go back.
std::string difference(std::uint64_t from, std::uint64_t to) {
    return std::to_string(static_cast<std::int64_t>(to - from));
}

std::string text_of(const connection& ended) {
    return '[' + std::to_string(ended.first_record) + ',' + difference(ended.begin, ended.end) +
           ',' + difference(ended.last_content, ended.end) + ',' + page_json(ended.cause) + ']';
}

}  // namespace

std::string page_rows::row_of(const trace_record& record, const outcome& result,
                              const connection_log& connections, std::uint64_t number) {
    std::string row = '[' + difference(last_time_, record.timestamp) + ',' +
                      std::to_string(static_cast<int>(lane_of(record, result.message))) + ',' +
                      std::to_string(marks_of(result.message));
    last_time_ = record.timestamp;
    std::string skipped;
    const auto add = [&row, &skipped](const std::string& value, std::string_view empty) {
        skipped += ',';
        if (value == empty) {
            skipped += value;
            return;
        }
        row += skipped + value;
        skipped.clear();
    };
    for (const auto& text : {result.message.name, record.format, told_by(result),
                             compact(settings_in(result)), compact(result.document),
                             result.failure ? result.failure->text : "", compact(log_of(result))}) {
        add(reference(text), "0");
    }
    if (const auto& last = connections.last(); last && last->last_record == number) {
        add(text_of(*last), "");
    }
    return row + ']';
}

std::string page_rows::reference(const std::string& text) {
    if (text.empty()) {
        return "0";
    }
    if (const auto known = numbers_.find(text); known != numbers_.end()) {
        return std::to_string(known->second);
    }
    // Enough for what repeats in a trace; what comes again after all is written again.
    constexpr std::size_t most_known_bytes = std::size_t{4} << 20U;
    constexpr std::size_t bytes_an_entry = 100;
    if (known_bytes_ > most_known_bytes) {
        numbers_.clear();
        known_bytes_ = 0;
    }
    numbers_.emplace(text, ++texts_);
    known_bytes_ += text.size() + bytes_an_entry;
    return page_json(text);
}

page_lane lane_of(const trace_record& record, const message_description& message) {
    const auto by_direction = [&message](page_lane uplink, page_lane downlink, page_lane unknown) {
        return message.direction == message_direction::uplink     ? uplink
               : message.direction == message_direction::downlink ? downlink
                                                                  : unknown;
    };
    if (record.format == "ip") {
        return page_lane::ip;
    }
    if (message.name.starts_with("BCCH")) {
        return page_lane::broadcast;
    }
    if (message.event == message_event::paging) {
        return page_lane::paging;
    }
    if (record.format.starts_with("nas")) {
        return by_direction(page_lane::nas_uplink, page_lane::nas_downlink, page_lane::nas);
    }
    return by_direction(page_lane::rrc_uplink, page_lane::rrc_downlink, page_lane::other);
}

}  // namespace KIVRA::TSHARK::REPLAY
