#include "platform/console/folder_watch.h"

namespace KIVRA::TSHARK::PLATFORM {

struct folder_watch::state {};

folder_watch::folder_watch(std::filesystem::path /*folder*/, watched_names /*names*/) {
    throw std::system_error(std::make_error_code(std::errc::not_supported));
}

folder_watch::~folder_watch() = default;

folder_news folder_watch::next(std::chrono::milliseconds /*at_most*/) {
    return {};
}

}  // namespace KIVRA::TSHARK::PLATFORM
