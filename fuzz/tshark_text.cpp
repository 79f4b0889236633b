/// tshark's text through its processing, the parsers, the mapping and the parameter file.
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <exception>
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
int parameter_file() {
    static const int descriptor = memfd_create("profile", MFD_CLOEXEC);
    return descriptor;
}

void check_log(const void* caller, void* /*user_data*/, std::uint32_t level, const char* message) {
    require(caller != nullptr && level == KIVRA_LOG_INFORMATION && message != nullptr);
}

/// Made once, since it reads the operator list.
sink_context& context() {
    static sink_context instance(nullptr, check_log, "tshark", "output-that-never-exists",
                                 "/proc/self/fd/" + std::to_string(parameter_file()));
    return instance;
}

/// Checks what was written, if anything, and takes it away.
void check_parameter_file() {
    struct stat status {};
    require(fstat(parameter_file(), &status) == 0);
    if (status.st_size == 0) {
        return;
    }
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    require(pread(parameter_file(), text.data(), text.size(), 0) == status.st_size);
    require(ftruncate(parameter_file(), 0) == 0);
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
    context().texts = {};
    context().carried_state = nullptr;
    try {
        const json result = ANALYSIS::process_output(
            context(), std::string(reinterpret_cast<const char*>(data), size));
        if (!result.empty()) {
            ANALYSIS::deliver_result({}, result, check_text, nullptr);
        }
    } catch (const std::exception&) {
        // The way in which a record fails.
    }
    check_parameter_file();
    return 0;
}
