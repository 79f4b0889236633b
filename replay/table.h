/// The report for people: a table with a line a record.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "replay/learnt.h"
#include "replay/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

class table {
  public:
    /// @param out outlives the object
    table(std::ostream& out, bool coloured) : out_(out), coloured_(coloured) {}

    void head();

    /// @param said what the record's result document says
    void row(std::uint64_t number, const record& packet, const outcome& result, const learnt& said);

  private:
    std::ostream& out_;
    bool coloured_;
};

}  // namespace KIVRA::TSHARK::REPLAY
