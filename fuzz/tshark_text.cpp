/// tshark's text through its processing, the parsers, the mapping and the parameter file.
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <nlohmann/json.hpp>

#include "analysis/output_processing.h"
#include "analysis/result_delivery.h"
#include "context/sink_context.h"
#include "fuzz/require.h"
#include "profile/parameter_file.h"

namespace {

using namespace KIVRA::TSHARK;
using FUZZ::require;
using nlohmann::json;

/// A parameter file that lives in memory.
const std::filesystem::path& parameter_file() {
    static const std::filesystem::path path =
        "/proc/self/fd/" + std::to_string(memfd_create("profile", MFD_CLOEXEC));
    return path;
}

void check_log(const void* caller, void* /*user_data*/, std::uint32_t level, const char* message) {
    require(caller != nullptr && level == KIVRA_LOG_INFORMATION && message != nullptr);
}

/// Made once, since it reads the operator list.
sink_context& context() {
    static sink_context instance(nullptr, check_log, "tshark", "output-that-never-exists",
                                 parameter_file());
    return instance;
}

void check_parameter_file() {
    std::ifstream stream(parameter_file(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (text.empty()) {
        return;
    }
    const json profile = json::parse(text);
    require(profile.size() == PROFILE::profile_defaults.size());
    for (const auto& [name, value] : PROFILE::profile_defaults) {
        require(profile.at(name).is_string());
    }
}

void check_text(void* /*user_data*/, const kivra_annotated_chunk* annotated) {
    require(!json::parse(annotated->text).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::filesystem::resize_file(parameter_file(), 0);
    context().texts = {};
    context().carried_state = nullptr;
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const json result = ANALYSIS::process_output(context(), text);
        if (!result.empty()) {
            ANALYSIS::deliver_result({}, result, check_text, nullptr);
        }
    } catch (const std::exception&) {
        // The way in which a record fails.
    }
    check_parameter_file();
    return 0;
}
