#include "analysis/result_delivery.h"

#include <string>

#include "platform/host_call.h"

namespace KIVRA::TSHARK::ANALYSIS {

void deliver_result(const kivra_trace_chunk& chunk, const nlohmann::json& document,
                    kivra_chunk_callback callback, void* user_data) {
    if (callback == nullptr) {
        return;
    }
    const std::string text = document.dump(4);
    const kivra_annotated_chunk annotated{chunk, text.c_str()};
    PLATFORM::call_host(callback, user_data, &annotated);
}

}  // namespace KIVRA::TSHARK::ANALYSIS
