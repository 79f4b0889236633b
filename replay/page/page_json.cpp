#include "replay/page/page_json.h"

namespace KIVRA::TSHARK::REPLAY {

std::string page_json(const nlohmann::ordered_json& value) {
    const auto plain = value.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
    std::string text;
    text.reserve(plain.size());
    for (const char c : plain) {
        // JSON has these inside strings alone.
        switch (c) {
            case '<':
                text += "\\u003c";
                break;
            case '>':
                text += "\\u003e";
                break;
            case '&':
                text += "\\u0026";
                break;
            default:
                text += c;
        }
    }
    return text;
}

}  // namespace KIVRA::TSHARK::REPLAY
