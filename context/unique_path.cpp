#include "context/unique_path.h"

#include <chrono>
#include <ratio>
#include <string>

#include "context/file_status.h"

namespace KIVRA::TSHARK {

std::int64_t wall_clock_nanoseconds() {
    using ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<ticks>(now).count() * 100;
}

std::filesystem::path unique_path(std::string_view prefix, std::string_view extension,
                                  std::int64_t (*clock)()) {
    for (int attempt = 1;; ++attempt) {
        const std::string name = std::string(prefix) + std::to_string(clock()) +
                                 std::to_string(attempt) + "." + std::string(extension);
        std::filesystem::path path = working_directory() / name;
        if (!entry_exists(path)) {
            return path;
        }
    }
}

}  // namespace KIVRA::TSHARK
