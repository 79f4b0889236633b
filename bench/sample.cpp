#include "bench/sample.h"

#include <filesystem>

#include "analysis/output_processing.h"
#include "analysis/single_tshark.h"

namespace KIVRA::TSHARK::BENCH {

std::string sample_output(const char* name) {
    return ANALYSIS::read_output(std::filesystem::path(KIVRA_SAMPLE_OUTPUTS) / name);
}

nlohmann::json sample_packet(const char* name) {
    return nlohmann::json::parse(ANALYSIS::number_repeated_names(sample_output(name))).at(0);
}

}  // namespace KIVRA::TSHARK::BENCH
