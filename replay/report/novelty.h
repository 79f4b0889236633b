/// Which records of a trace tell something new.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "replay/record/outcome.h"
#include "replay/report/record_details.h"

namespace KIVRA::TSHARK::REPLAY {

class novelty {
  public:
    /// Whether the record fails, is malformed, belongs to a procedure, is the first of its name, or
    /// has a value or a log message that it did not have when it was last asked about.
    /// @param details of the record
    bool is_new(const outcome& result, const std::vector<detail_value>& details);

  private:
    std::set<std::string> names_;
    std::set<std::string> log_texts_;
    /// The last value of each name.
    std::map<std::string, std::string> values_;
};

}  // namespace KIVRA::TSHARK::REPLAY
