#include <memory>
#include <stdexcept>
#include <utility>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "analysis/analysis_run.h"
#include "analysis/result_delivery.h"
#include "analysis/tshark/running_tshark.h"
#include "analysis/tshark/single_tshark.h"
#include "context/sink_context.h"
#include "context/unique_path.h"
#include "platform/host_call.h"
#include "platform/platform.h"
#include "sink/error_capture.h"
#include "sink/init_parameters.h"
#include "sink/tshark_discovery.h"

/// What the host's opaque pointer points at.
struct kivra_sink_context final : KIVRA::TSHARK::sink_context {
    using sink_context::sink_context;

    std::unique_ptr<KIVRA::TSHARK::ANALYSIS::dissection_source> tshark;
};

namespace {

using namespace KIVRA::TSHARK;

kivra_version_info version_info() {
    kivra_version_info version{};
    version.description = "tshark sink plugin ()";
    version.major = KIVRA_TSHARK_SINK_INTERFACE_MAJOR;
    version.minor = KIVRA_TSHARK_SINK_INTERFACE_MINOR;
    version.patch = KIVRA_TSHARK_SINK_INTERFACE_PATCH;
    version.flag = 1;
    return version;
}

std::unique_ptr<ANALYSIS::dissection_source> make_source(const SINK::init_values& values) {
    if (values.tshark_session) {
        return std::make_unique<ANALYSIS::running_tshark>();
    }
    return std::make_unique<ANALYSIS::single_tshark>();
}

std::unique_ptr<kivra_sink_context> make_context(const kivra_init_parameters& parameters) {
    SINK::init_values values = SINK::read_init_parameters(parameters);
    if (values.tshark_directory.empty()) {
        values.tshark_directory = SINK::discover_tshark_directory(PLATFORM::path_variable());
    }
    auto executable = SINK::tshark_executable(values.tshark_directory);
    auto output = unique_path("tshark", "json");
    auto context = std::make_unique<kivra_sink_context>(
        parameters.log_user_data, parameters.log_callback, std::move(executable), std::move(output),
        std::move(values.parameter_file));
    context->tshark = make_source(values);
    return context;
}

}  // namespace

std::int32_t kivra_sink_init_parameters(void* user_data, kivra_schema_callback callback) {
    try {
        if (callback != nullptr) {
            PLATFORM::call_host(callback, user_data, SINK::init_parameter_schema);
        }
        return KIVRA_RESULT_SUCCESS;
    } catch (...) {
        return KIVRA_RESULT_FAILED;
    }
}

std::int32_t kivra_sink_version(void* user_data, kivra_version_callback callback) {
    try {
        const kivra_version_info version = version_info();
        if (callback != nullptr) {
            PLATFORM::call_host(callback, user_data, &version);
        }
        return KIVRA_RESULT_SUCCESS;
    } catch (...) {
        return KIVRA_RESULT_FAILED;
    }
}

std::int32_t kivra_sink_init(kivra_sink_context** context,
                             const kivra_init_parameters* parameters) {
    if (parameters == nullptr) {
        return KIVRA_RESULT_INIT_FAILED;
    }
    return SINK::capture_init_errors(
        parameters->error_callback, parameters->error_user_data, [context, parameters] {
            if (context == nullptr) {
                throw std::invalid_argument("no place to put the context was given");
            }
            *context = make_context(*parameters).release();
        });
}

std::int32_t kivra_sink_data(kivra_sink_context* context, const kivra_trace_chunk* chunk,
                             void* /*reserved_1*/, void* /*reserved_2*/, void* user_data,
                             kivra_chunk_callback callback) {
    if (context == nullptr) {
        return KIVRA_RESULT_FAILED;
    }
    try {
        return SINK::capture_data_errors(*context, [&] {
            if (chunk == nullptr) {
                throw std::invalid_argument("no record was given");
            }
            ANALYSIS::analyse_record(
                *context, *chunk, *context->tshark, [&](const nlohmann::json& document) {
                    ANALYSIS::deliver_result(*chunk, document, callback, user_data);
                });
        });
    } catch (...) {
        // Not even the reason could be kept.
        return KIVRA_RESULT_FAILED;
    }
}

std::int32_t kivra_sink_complete(kivra_sink_context* /*context*/) {
    return KIVRA_RESULT_SUCCESS;
}

std::int32_t kivra_sink_cancel(kivra_sink_context* /*context*/) {
    return KIVRA_RESULT_SUCCESS;
}

void kivra_sink_get_last_error(kivra_sink_context* context, void* user_data,
                               kivra_error_callback callback) {
    if (context != nullptr) {
        SINK::report_error(callback, user_data, context->last_error_text.c_str(),
                           context->last_error_code);
    }
}

std::int32_t kivra_sink_release(kivra_sink_context* context) {
    try {
        delete context;
        return KIVRA_RESULT_SUCCESS;
    } catch (...) {
        return KIVRA_RESULT_FAILED;
    }
}
