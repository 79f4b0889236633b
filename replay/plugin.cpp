#include "replay/plugin.h"

#include <dlfcn.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

[[noreturn]] void fail_to_load() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    throw std::runtime_error(std::string("can't load the plug-in: ") + dlerror());
}

void* load(const std::filesystem::path& file) {
    // With its folder: a bare name would be searched for in the system's library folders.
    void* library = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        fail_to_load();
    }
    return library;
}

template <typename Function>
Function* find(void* library, const char* name) {
    void* symbol = dlsym(library, name);
    if (symbol == nullptr) {
        fail_to_load();
    }
    return reinterpret_cast<Function*>(symbol);
}

void expect_success(std::int32_t result, std::string_view function) {
    if (result != KIVRA_RESULT_SUCCESS) {
        throw std::runtime_error("the plug-in's " + std::string(function) + " failed with " +
                                 std::to_string(result));
    }
}

void copy_version(void* user_data, const kivra_version_info* version) {
    *static_cast<std::string*>(user_data) = std::to_string(version->major) + '.' +
                                            std::to_string(version->minor) + '.' +
                                            std::to_string(version->patch);
}

void copy_schema(void* user_data, const char* schema) {
    *static_cast<std::string*>(user_data) = schema;
}

void copy_error(void* user_data, const kivra_error* error) {
    *static_cast<std::string*>(user_data) = error->message;
}

}  // namespace

void plugin::unloader::operator()(void* library) const {
    dlclose(library);
}

plugin::plugin(const std::filesystem::path& file)
    : library_(load(file)),
      version_(find<kivra_sink_version_function>(library_.get(), "kivra_sink_version")),
      init_parameters_(
          find<kivra_sink_init_parameters_function>(library_.get(), "kivra_sink_init_parameters")),
      init_(find<kivra_sink_init_function>(library_.get(), "kivra_sink_init")),
      data_(find<kivra_sink_data_function>(library_.get(), "kivra_sink_data")),
      complete_(find<kivra_sink_complete_function>(library_.get(), "kivra_sink_complete")),
      cancel_(find<kivra_sink_cancel_function>(library_.get(), "kivra_sink_cancel")),
      get_last_error_(
          find<kivra_sink_get_last_error_function>(library_.get(), "kivra_sink_get_last_error")),
      release_(find<kivra_sink_release_function>(library_.get(), "kivra_sink_release")) {}

plugin_description plugin::describe() const {
    plugin_description description;
    expect_success(version_(&description.version, copy_version), "kivra_sink_version");
    expect_success(init_parameters_(&description.parameter_schema, copy_schema),
                   "kivra_sink_init_parameters");
    return description;
}

sink::sink(const plugin& loaded, const std::filesystem::path& tshark_directory,
           const std::filesystem::path& profile)
    : plugin_(loaded) {
    std::string reason = "no reason given";
    kivra_init_parameters parameters{};
    parameters.entries[0].key = "tshark_directory";
    parameters.entries[0].value = tshark_directory.c_str();
    parameters.entries[1].key = "file_path";
    parameters.entries[1].value = profile.c_str();
    parameters.count = 2;
    parameters.log_user_data = current();
    parameters.log_callback = collect_log;
    parameters.error_user_data = &reason;
    parameters.error_callback = copy_error;
    if (plugin_.init_(&context_, &parameters) != KIVRA_RESULT_SUCCESS) {
        throw std::runtime_error("the plug-in can't start: " + reason);
    }
}

sink::~sink() {
    if (!completed_) {
        plugin_.cancel_(context_);
    }
    plugin_.release_(context_);
}

std::optional<std::string> sink::run_chunk(const kivra_trace_chunk& chunk) {
    if (plugin_.data_(context_, &chunk, nullptr, nullptr, current(), collect_document) ==
        KIVRA_RESULT_SUCCESS) {
        return std::nullopt;
    }
    std::string reason;
    plugin_.get_last_error_(context_, &reason, copy_error);
    return reason;
}

void sink::complete() {
    completed_ = true;
    plugin_.complete_(context_);
}

}  // namespace KIVRA::TSHARK::REPLAY
