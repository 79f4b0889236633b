/// What a result document says, in the words of those who measure modems.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::REPLAY {

/// A value that the trace gave, such as "idrx_int" and "2.56".
struct learnt_value {
    std::string name;
    std::string value;
};

struct learnt {
    /// The messages of the record, such as "rrcConnectionSetup" or "Attach accept".
    std::vector<std::string> messages = {};
    std::vector<learnt_value> values = {};
};

/// Nothing for a null document.
learnt learn_from(const nlohmann::json& result);

}  // namespace KIVRA::TSHARK::REPLAY
