#include "analysis/tshark_command.h"

namespace KIVRA::TSHARK::ANALYSIS {

std::vector<std::string> tshark_arguments(const std::filesystem::path& capture) {
    const std::u8string file = capture.u8string();
    return {"-Y", "nas-eps||lte_rrc", "-r", {file.begin(), file.end()}, "-T", "json"};
}

}  // namespace KIVRA::TSHARK::ANALYSIS
