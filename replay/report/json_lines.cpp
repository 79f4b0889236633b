#include "replay/report/json_lines.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

nlohmann::ordered_json setting_member(const setting& told) {
    nlohmann::ordered_json member{{"name", told.name},
                                  {"value", told.value},
                                  {"unit", told.unit},
                                  {"role", text_of(told.role)},
                                  {"clause", told.clause}};
    if (!told.known) {
        member["known"] = false;
    }
    return member;
}

}  // namespace

void json_lines::begin(const std::string& /*heading*/) {}

void json_lines::add(std::uint64_t number, const trace_record& record, const outcome& result) {
    using json = nlohmann::ordered_json;
    json line{{"number", number}, {"time", iso_8601(record.timestamp)}, {"format", record.format}};
    if (result.failure) {
        line["error"] = result.failure->text;
    } else {
        line["result"] = result.document;
    }
    for (const auto& told : result.settings) {
        line["settings"].push_back(setting_member(told));
    }
    if (result.message.is_malformed) {
        line["malformed"] = true;
    }
    auto& log = line["log"] = json::array();
    for (const auto& [level, text] : result.log) {
        log.push_back({{"level", level}, {"message", text}});
    }
    out_ << line.dump(-1, ' ', false, json::error_handler_t::replace) << '\n';
}

void json_lines::end(const capture_content& /*captures*/) {}

}  // namespace KIVRA::TSHARK::REPLAY
