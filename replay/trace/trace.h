/// What the records of a run say together.
#pragma once

#include <cstdint>

#include "replay/record/outcome.h"
#include "replay/record/record.h"
#include "replay/trace/connection_log.h"
#include "replay/trace/profile_sources.h"
#include "replay/trace/setting_history.h"

namespace KIVRA::TSHARK::REPLAY {

/// Its size does not grow with the number of records.
struct trace {
    setting_history settings = {};
    connection_log connections = {};
    profile_sources sources = {};

    void add(std::uint64_t number, const trace_record& record, const outcome& result) {
        settings.add(number, record.timestamp, result.settings);
        settings.follow(number, result.message);
        connections.add(number, record, result);
        sources.follow(number, result.document, settings);
    }
};

}  // namespace KIVRA::TSHARK::REPLAY
