#include "replay/json_lines.h"

#include "replay/text.h"

namespace KIVRA::TSHARK::REPLAY {

std::string json_line(std::uint64_t number, const record& packet, const outcome& result) {
    using json = nlohmann::ordered_json;
    json line{{"number", number}, {"time", iso_8601(packet.timestamp)}, {"format", packet.format}};
    if (result.failure) {
        line["error"] = *result.failure;
    } else {
        line["result"] = result.result;
    }
    auto& log = line["log"] = json::array();
    for (const auto& [level, text] : result.log) {
        log.push_back({{"level", level}, {"message", text}});
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

}  // namespace KIVRA::TSHARK::REPLAY
