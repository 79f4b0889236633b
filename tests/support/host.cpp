#include "tests/support/host.h"

#include <algorithm>
#include <regex>

#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::TESTING {

namespace {

void note_log(const void* caller, void* user_data, std::uint32_t level, const char* message) {
    auto& self = *static_cast<host*>(user_data);
    self.logs.push_back({caller, level, message});
    if (self.on_log) {
        self.on_log();
    }
}

void note_init_error(void* user_data, const kivra_error* error) {
    static_cast<host*>(user_data)->init_errors.emplace_back(error->message, error->code);
}

void note_chunk(void* user_data, const kivra_annotated_chunk* chunk) {
    auto& self = *static_cast<host*>(user_data);
    self.texts.emplace_back(chunk->text);
    if (self.on_chunk) {
        self.on_chunk(*chunk);
    }
}

}  // namespace

std::filesystem::path plugin_file() {
    return KIVRA_PLUGIN;
}

std::filesystem::path tshark_directory() {
    return KIVRA_TSHARK;
}

std::filesystem::path fake_tshark_directory() {
    return KIVRA_FAKE_TSHARK;
}

void fake_tshark_runs(std::string_view script) {
    write_file("fake_tshark.sh", script);
}

void fake_tshark_prints(std::string_view output) {
    write_file("fake_tshark.output", output);
    fake_tshark_runs("cat fake_tshark.output\n");
}

sink_exports::sink_exports(const shared_library& library)
    : init_parameters(
          library.function<kivra_sink_init_parameters_function>("kivra_sink_init_parameters")),
      version(library.function<kivra_sink_version_function>("kivra_sink_version")),
      init(library.function<kivra_sink_init_function>("kivra_sink_init")),
      data(library.function<kivra_sink_data_function>("kivra_sink_data")),
      complete(library.function<kivra_sink_complete_function>("kivra_sink_complete")),
      cancel(library.function<kivra_sink_cancel_function>("kivra_sink_cancel")),
      get_last_error(
          library.function<kivra_sink_get_last_error_function>("kivra_sink_get_last_error")),
      release(library.function<kivra_sink_release_function>("kivra_sink_release")) {}

host::host(const std::filesystem::path& plugin) : library_(plugin), exports(library_) {}

host::~host() {
    release();
}

kivra_init_parameters host::block(const parameter_list& parameters) {
    kivra_init_parameters block{};
    for (const auto& [key, value] : parameters) {
        auto& entry = block.entries[block.count++];
        entry.key = key.c_str();
        entry.value = value.c_str();
    }
    block.log_user_data = this;
    block.log_callback = note_log;
    block.error_user_data = this;
    block.error_callback = note_init_error;
    return block;
}

std::int32_t host::init(const parameter_list& parameters) {
    const kivra_init_parameters parameter_block = block(parameters);
    return exports.init(&context, &parameter_block);
}

std::int32_t host::init_with_fake_tshark(const std::filesystem::path& parameter_file) {
    return init({{"tshark_directory", narrow_text(fake_tshark_directory())},
                 {"file_path", narrow_text(parameter_file)}});
}

std::int32_t host::data(const std::string& format, std::string_view payload,
                        std::uint64_t timestamp) {
    kivra_trace_chunk chunk{};
    chunk.data = reinterpret_cast<const std::uint8_t*>(payload.data());
    chunk.size = static_cast<std::uint32_t>(payload.size());
    chunk.format = format.c_str();
    chunk.timestamp = timestamp;
    return exports.data(context, &chunk, nullptr, nullptr, this, note_chunk);
}

error_entry host::last_error() {
    error_entry noted{"no error was reported", 0};
    exports.get_last_error(context, &noted, [](void* user_data, const kivra_error* error) {
        *static_cast<error_entry*>(user_data) = {error->message, error->code};
    });
    return noted;
}

std::int32_t host::release() {
    return exports.release(std::exchange(context, nullptr));
}

std::vector<std::string> host::messages() const {
    std::vector<std::string> found;
    for (const auto& entry : logs) {
        if (!is_timing(entry.message)) {
            found.push_back(entry.message);
        }
    }
    return found;
}

nlohmann::json host::document() const {
    EXPECT_EQ(texts.size(), 1U);
    return texts.empty() ? nlohmann::json() : nlohmann::json::parse(texts.back());
}

bool is_timing(const std::string& message) {
    static const std::regex pattern("tshark processing took: [0-9]+ms");
    return std::regex_match(message, pattern);
}

}  // namespace KIVRA::TSHARK::TESTING
