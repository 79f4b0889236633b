#include "replay/tshark_version.h"

#include <array>
#include <cstddef>

#include "platform/piped_process.h"

namespace KIVRA::TSHARK::REPLAY {

std::string tshark_version(const std::filesystem::path& tshark) {
    try {
        PLATFORM::piped_process process(tshark, {"--version"});
        process.close_input();
        std::string text;
        std::array<char, 1024> room{};
        // The rest tells what it was built with.
        while (text.find('\n') == std::string::npos) {
            const auto moved = process.exchange({}, room, true);
            if (moved.ended) {
                break;
            }
            text.append(room.data(), moved.read);
        }
        return text.substr(0, text.find_first_of("\r\n"));
    } catch (const PLATFORM::process_not_started&) {
        return {};
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
