#include "replay/runner/plugin.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/platform.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

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

void collect_document(void* user_data, const kivra_annotated_chunk* chunk) {
    static_cast<outcome*>(user_data)->document = nlohmann::json::parse(chunk->text);
}

void copy_error(void* user_data, const kivra_error* error) {
    *static_cast<std::string*>(user_data) = error->message;
}

}  // namespace

plugin::plugin(const std::filesystem::path& file) try
    : library_(file),
      version_(library_.function<kivra_sink_version_function>("kivra_sink_version")),
      init_parameters_(
          library_.function<kivra_sink_init_parameters_function>("kivra_sink_init_parameters")),
      init_(library_.function<kivra_sink_init_function>("kivra_sink_init")),
      data_(library_.function<kivra_sink_data_function>("kivra_sink_data")),
      complete_(library_.function<kivra_sink_complete_function>("kivra_sink_complete")),
      cancel_(library_.function<kivra_sink_cancel_function>("kivra_sink_cancel")),
      get_last_error_(
          library_.function<kivra_sink_get_last_error_function>("kivra_sink_get_last_error")),
      release_(library_.function<kivra_sink_release_function>("kivra_sink_release")) {
} catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string("can't load the plug-in: ") + error.what());
}

plugin_description plugin::describe() const {
    plugin_description description;
    expect_success(version_(&description.version, copy_version), "kivra_sink_version");
    expect_success(init_parameters_(&description.parameter_schema, copy_schema),
                   "kivra_sink_init_parameters");
    return description;
}

plugin_sink::plugin_sink(std::shared_ptr<const plugin> loaded,
                         const std::filesystem::path& tshark_directory,
                         const std::filesystem::path& tshark, const std::filesystem::path& profile,
                         bool session)
    : messages_(tshark), plugin_(std::move(loaded)) {
    std::string reason = "no reason given";
    const auto directory = PLATFORM::narrow_from_path(tshark_directory);
    const auto file = PLATFORM::narrow_from_path(profile);
    kivra_init_parameters parameters{};
    parameters.entries[0].key = "tshark_directory";
    parameters.entries[0].value = directory.c_str();
    parameters.entries[1].key = "file_path";
    parameters.entries[1].value = file.c_str();
    parameters.count = 2;
    if (session) {
        parameters.entries[2].key = "tshark_session";
        parameters.entries[2].value = "on";
        parameters.count = 3;
    }
    parameters.log_user_data = &current_;
    parameters.log_callback = collect_log;
    parameters.error_user_data = &reason;
    parameters.error_callback = copy_error;
    if (plugin_->init_(&context_, &parameters) != KIVRA_RESULT_SUCCESS) {
        throw std::runtime_error("the plug-in can't start: " + reason);
    }
}

plugin_sink::~plugin_sink() {
    if (!completed_) {
        plugin_->cancel_(context_);
    }
    plugin_->release_(context_);
}

void plugin_sink::submit(const trace_record& record, const outcome_handler& handler) {
    current_ = {};
    messages_.read(record, current_);
    if (record.failure) {
        current_.failure = record.failure;
    } else {
        run(record);
    }
    handler(record, current_);
}

void plugin_sink::run(const trace_record& record) {
    const auto chunk = chunk_of(record);
    if (plugin_->data_(context_, &chunk, nullptr, nullptr, &current_, collect_document) !=
        KIVRA_RESULT_SUCCESS) {
        auto& failure = current_.failure.emplace();
        plugin_->get_last_error_(context_, &failure.text, copy_error);
    }
}

void plugin_sink::complete() {
    completed_ = true;
    plugin_->complete_(context_);
}

}  // namespace KIVRA::TSHARK::REPLAY
