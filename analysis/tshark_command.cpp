#include "analysis/tshark_command.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

}  // namespace

std::string tshark_command(const std::filesystem::path& executable,
                           const std::filesystem::path& capture,
                           const std::filesystem::path& output) {
    return R"(cmd /c "")" + utf8(executable) + R"(" -Y "nas-eps||lte_rrc" -r ")" + utf8(capture) +
           R"(" -T json > ")" + utf8(output) + R"("")";
}

}  // namespace KIVRA::TSHARK::ANALYSIS
