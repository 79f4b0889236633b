#include <stdexcept>

#include "platform/console/folder_watch.h"

namespace KIVRA::TSHARK::PLATFORM {

struct folder_watch::state {};

// NOLINTNEXTLINE(performance-unnecessary-value-param): elsewhere they are kept
folder_watch::folder_watch(std::filesystem::path /*folder*/, watched_names /*names*/) {
    throw std::runtime_error("folders can't be watched on this system");
}

folder_watch::~folder_watch() = default;

folder_news folder_watch::next(std::chrono::milliseconds /*at_most*/) {
    return {};
}

}  // namespace KIVRA::TSHARK::PLATFORM
