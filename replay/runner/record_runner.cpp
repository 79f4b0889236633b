#include "replay/runner/record_runner.h"

#include <utility>

namespace KIVRA::TSHARK::REPLAY {

kivra_trace_chunk chunk_of(const trace_record& record) {
    kivra_trace_chunk chunk{};
    chunk.data = record.payload.data();
    chunk.size = static_cast<std::uint32_t>(record.payload.size());
    chunk.format = record.format.c_str();
    chunk.timestamp = record.timestamp;
    return chunk;
}

outcome record_runner::run(const trace_record& record) {
    current_ = {};
    current_.failure = record.failure ? record.failure : run_chunk(chunk_of(record));
    return std::move(current_);
}

void record_runner::collect_log(const void* /*caller*/, void* user_data, std::uint32_t level,
                                const char* message) {
    static_cast<outcome*>(user_data)->log.push_back({level, message});
}

}  // namespace KIVRA::TSHARK::REPLAY
