/// A way to run records: what comes of each, whoever does the work. Used from one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "replay/capture.h"

namespace KIVRA::TSHARK::REPLAY {

struct log_message {
    std::uint32_t level = 0;
    std::string text;
};

/// What became of a record.
struct outcome {
    /// The result document; null when there is none.
    nlohmann::json result = {};
    std::vector<log_message> log = {};
    /// Why the record failed, when it did.
    std::optional<std::string> failure = {};
};

/// Whether the message tells how long tshark took, which differs from run to run.
bool is_timing(const log_message& message);

class record_runner {
  public:
    record_runner() = default;
    virtual ~record_runner() = default;
    record_runner(const record_runner&) = delete;
    record_runner& operator=(const record_runner&) = delete;

    /// Runs a record, or takes over why it can't be run.
    outcome run(const record& packet);

    /// Tells that there are no more records.
    virtual void complete() = 0;

  protected:
    /// The plug-in's callbacks; their user data is the runner's `current`.
    static void collect_log(const void* caller, void* user_data, std::uint32_t level,
                            const char* message);
    static void collect_document(void* user_data, const kivra_annotated_chunk* chunk);

    /// Where the callbacks put what they are given.
    outcome* current() { return &current_; }

  private:
    /// @return why the record failed, when it did
    virtual std::optional<std::string> run_chunk(const kivra_trace_chunk& chunk) = 0;

    outcome current_;
};

}  // namespace KIVRA::TSHARK::REPLAY
