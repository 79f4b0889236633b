/// What a record tells, by the names that engineers use.
#pragma once

#include <string>
#include <vector>

#include "replay/record/outcome.h"

namespace KIVRA::TSHARK::REPLAY {

/// A value that the trace gave, such as "idrx_int" and "2.56".
struct detail_value {
    std::string name;
    std::string value;
};

/// The values of the result document, and why the network rejects.
std::vector<detail_value> details_of(const outcome& result);

}  // namespace KIVRA::TSHARK::REPLAY
