/// A way to run records: what comes of each, whoever does the work. Used from one thread.
#pragma once

#include <cstdint>
#include <functional>

#include <kivra/tshark_sink.h>

#include "replay/record/outcome.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// Gets each record with its outcome, in the order of the records. The record's payload is not
/// valid any more.
using outcome_handler = std::function<void(const trace_record& record, const outcome& result)>;

class record_runner {
  public:
    record_runner() = default;
    virtual ~record_runner() = default;
    record_runner(const record_runner&) = delete;
    record_runner& operator=(const record_runner&) = delete;

    /// Takes a record. Those that are finished by then go to the handler, which may be none.
    virtual void submit(const trace_record& record, const outcome_handler& handler) = 0;

    /// Waits for all records that were taken.
    virtual void finish(const outcome_handler& handler) = 0;

    /// Tells that there are no more records.
    virtual void complete() = 0;
};

/// The record as hosts hand it to the plug-in; points into it.
kivra_trace_chunk chunk_of(const trace_record& record);

/// A log callback that adds messages to the outcome which the user data points at.
void collect_log(const void* caller, void* user_data, std::uint32_t level, const char* message);

}  // namespace KIVRA::TSHARK::REPLAY
