/// What a result document tells, by the names that engineers use.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {

/// A value that the trace gave, such as "idrx_int" and "2.56".
struct detail_value {
    std::string name;
    std::string value;
};

struct record_details {
    /// The messages of the record, such as "rrcConnectionSetup" or "Attach accept".
    std::vector<std::string> messages = {};
    std::vector<detail_value> values = {};
};

/// Nothing for a null document.
record_details details_of(const nlohmann::json& document);

}  // namespace KIVRA::TSHARK::REPLAY
