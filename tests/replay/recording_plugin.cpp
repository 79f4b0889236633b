// A plug-in that writes down how its host calls it, in the file "calls" of the working directory,
// and answers a record by its format: "document", "log" or "fail"; any other gives nothing. As a
// tshark_directory it refuses "/refused".
#include <fstream>
#include <string>
#include <string_view>

#include <kivra/tshark_sink.h>

struct kivra_sink_context {
    kivra_init_parameters parameters;
    std::string last_error;
};

namespace {

std::ofstream calls() {
    return std::ofstream("calls", std::ios::app);
}

}  // namespace

extern "C" {

int32_t kivra_sink_version(void* user_data, kivra_version_callback callback) {
    calls() << "version\n";
    kivra_version_info version{};
    version.major = 1;
    version.minor = 22;
    version.patch = 3;
    callback(user_data, &version);
    return KIVRA_RESULT_SUCCESS;
}

int32_t kivra_sink_init_parameters(void* user_data, kivra_schema_callback callback) {
    calls() << "init_parameters\n";
    callback(user_data, "{}");
    return KIVRA_RESULT_SUCCESS;
}

int32_t kivra_sink_init(kivra_sink_context** context, const kivra_init_parameters* parameters) {
    calls() << "init";
    for (uint64_t i = 0; i < parameters->count; ++i) {
        const auto& entry = parameters->entries[i];
        calls() << ' ' << entry.key << '=' << entry.value;
    }
    calls() << '\n';
    if (std::string_view(parameters->entries[0].value) == "/refused") {
        const kivra_error error{"refused", KIVRA_RESULT_INIT_FAILED, {}};
        parameters->error_callback(parameters->error_user_data, &error);
        return KIVRA_RESULT_INIT_FAILED;
    }
    parameters->log_callback(nullptr, parameters->log_user_data, KIVRA_LOG_INFORMATION, "started");
    *context = new kivra_sink_context{*parameters, ""};
    return KIVRA_RESULT_SUCCESS;
}

int32_t kivra_sink_data(kivra_sink_context* context, const kivra_trace_chunk* chunk, void*, void*,
                        void* user_data, kivra_chunk_callback callback) {
    const std::string_view format = chunk->format;
    const std::string payload(reinterpret_cast<const char*>(chunk->data), chunk->size);
    calls() << "data " << format << ' ' << payload << ' ' << chunk->timestamp << '\n';
    if (format == "document") {
        const kivra_annotated_chunk annotated{*chunk, "{\n    \"a\": \"b\"\n}"};
        callback(user_data, &annotated);
    }
    if (format == "log") {
        for (const auto* text : {"x mapping not found", "tshark processing took: 412ms"}) {
            context->parameters.log_callback(context, context->parameters.log_user_data,
                                             KIVRA_LOG_INFORMATION, text);
        }
    }
    if (format == "fail") {
        context->last_error = "failed on " + payload;
        return KIVRA_RESULT_FAILED;
    }
    return KIVRA_RESULT_SUCCESS;
}

int32_t kivra_sink_complete(kivra_sink_context*) {
    calls() << "complete\n";
    return KIVRA_RESULT_SUCCESS;
}

int32_t kivra_sink_cancel(kivra_sink_context*) {
    calls() << "cancel\n";
    return KIVRA_RESULT_SUCCESS;
}

void kivra_sink_get_last_error(kivra_sink_context* context, void* user_data,
                               kivra_error_callback callback) {
    const kivra_error error{context->last_error.c_str(), KIVRA_RESULT_FAILED, {}};
    callback(user_data, &error);
}

int32_t kivra_sink_release(kivra_sink_context* context) {
    calls() << "release\n";
    delete context;
    return KIVRA_RESULT_SUCCESS;
}
}
