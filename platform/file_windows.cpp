#include <fstream>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

void write_file(const std::filesystem::path& file, std::string_view content) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
}

}  // namespace KIVRA::TSHARK::PLATFORM
