/// A form of report on a run of records. What runs them is of no matter to it.
#pragma once

#include <cstdint>
#include <string>

#include "replay/record/capture_content.h"
#include "replay/record/outcome.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

class report {
  public:
    report() = default;
    virtual ~report() = default;
    report(const report&) = delete;
    report& operator=(const report&) = delete;

    /// Called once, before the first record.
    /// @param heading what runs the records, for people
    virtual void begin(const std::string& heading) = 0;

    /// Called for each record, in their order.
    /// @param number of the record, from 1
    virtual void add(std::uint64_t number, const trace_record& record, const outcome& result) = 0;

    /// Called once, behind the last record; not when the run broke off.
    /// @param captures what was read
    /// @throws std::runtime_error when the run's profile can't be read
    virtual void end(const capture_content& captures) = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
