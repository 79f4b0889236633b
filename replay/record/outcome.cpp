#include "replay/record/outcome.h"

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

bool is_timing(const log_message& message) {
    const std::string_view text = message.text;
    return text.starts_with("tshark processing took: ") && text.ends_with("ms");
}

}  // namespace KIVRA::TSHARK::REPLAY
