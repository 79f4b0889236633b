#include "analysis/annotated_chunk.h"

#include <string>

namespace KIVRA::TSHARK::ANALYSIS {

void hand_back(const kivra_trace_chunk& chunk, const nlohmann::json& document,
               const chunk_receiver& receiver) {
    if (receiver.callback == nullptr || document.empty()) {
        return;
    }
    const std::string text = document.dump(4);
    const kivra_annotated_chunk annotated{chunk, text.c_str()};
    receiver.callback(receiver.user_data, &annotated);
}

}  // namespace KIVRA::TSHARK::ANALYSIS
