/// JSON inside an HTML page.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {

/// The value as JSON in ASCII that no HTML parser takes for markup: "<", ">", "&" and all beyond
/// ASCII are escaped. What is no UTF-8 becomes U+FFFD.
std::string page_json(const nlohmann::ordered_json& value);

}  // namespace KIVRA::TSHARK::REPLAY
