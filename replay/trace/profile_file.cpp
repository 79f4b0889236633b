#include "replay/trace/profile_file.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/console/console.h"
#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

profile_file::profile_file(fs::path path, bool temporary)
    : path_(std::move(path)),
      temporary_(temporary),
      former_write_time_(PLATFORM::write_time(path_)) {}

bool profile_file::written() const {
    std::error_code missing;
    return fs::is_regular_file(path_, missing) && PLATFORM::write_time(path_) != former_write_time_;
}

std::optional<std::string> profile_file::obstacle() const {
    std::error_code missing;
    if (fs::is_directory(path_, missing)) {
        return std::generic_category().message(EISDIR);
    }
    if (fs::exists(path_, missing)) {
        return fs::is_regular_file(path_, missing) ? PLATFORM::write_obstacle(path_)
                                                   : "not a regular file";
    }
    return PLATFORM::write_obstacle(fs::absolute(path_).parent_path() / "");
}

profile_content profile_file::read() const {
    profile_content content;
    try {
        std::ifstream stream(path_, std::ios::binary);
        const auto profile = nlohmann::json::parse(stream);
        for (const auto& [name, value] : profile.items()) {
            content.push_back({name, value.is_string() ? value.get<std::string>() : value.dump()});
        }
    } catch (const nlohmann::json::exception& error) {
        throw std::runtime_error("can't read " + text_of(path_) + ": " + error.what());
    }
    return content;
}

}  // namespace KIVRA::TSHARK::REPLAY
