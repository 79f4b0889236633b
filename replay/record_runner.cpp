#include "replay/record_runner.h"

#include <string_view>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

bool is_timing(const log_message& message) {
    const std::string_view text = message.text;
    return text.starts_with("tshark processing took: ") && text.ends_with("ms");
}

outcome record_runner::run(const record& packet) {
    current_ = {};
    if (packet.failure) {
        current_.failure = packet.failure;
    } else {
        kivra_trace_chunk chunk{};
        chunk.data = packet.payload.data();
        chunk.size = static_cast<std::uint32_t>(packet.payload.size());
        chunk.format = packet.format.c_str();
        chunk.timestamp = packet.timestamp;
        current_.failure = run_chunk(chunk);
    }
    return std::move(current_);
}

void record_runner::collect_log(const void* /*caller*/, void* user_data, std::uint32_t level,
                                const char* message) {
    static_cast<outcome*>(user_data)->log.push_back({level, message});
}

void record_runner::collect_document(void* user_data, const kivra_annotated_chunk* chunk) {
    static_cast<outcome*>(user_data)->result = nlohmann::json::parse(chunk->text);
}

}  // namespace KIVRA::TSHARK::REPLAY
