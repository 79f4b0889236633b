/// A way to run records: what comes of each, whoever does the work. Used from one thread.
#pragma once

#include <cstdint>
#include <optional>

#include <kivra/tshark_sink.h>

#include "replay/record/outcome.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// The record as hosts hand it to the plug-in; points into it.
kivra_trace_chunk chunk_of(const trace_record& record);

class record_runner {
  public:
    record_runner() = default;
    virtual ~record_runner() = default;
    record_runner(const record_runner&) = delete;
    record_runner& operator=(const record_runner&) = delete;

    /// Runs a record, or takes over why it can't be run.
    outcome run(const trace_record& record);

    /// Tells that there are no more records.
    virtual void complete() = 0;

  protected:
    /// The log callback; its user data is the runner's `current`.
    static void collect_log(const void* caller, void* user_data, std::uint32_t level,
                            const char* message);

    /// Where the record's document and log messages go.
    outcome* current() { return &current_; }

  private:
    /// @return why the record failed, when it did
    virtual std::optional<record_failure> run_chunk(const kivra_trace_chunk& chunk) = 0;

    outcome current_;
};

}  // namespace KIVRA::TSHARK::REPLAY
