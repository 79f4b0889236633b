/// A host, as tests drive the built plug-in: loads it by file name, calls its exports, and
/// remembers what the callbacks were given.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "tests/support/parser_probe.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::TESTING {

/// The plug-in that the build has made.
std::filesystem::path plugin_file();

/// The folder of the real tshark.
std::filesystem::path tshark_directory();

/// The folder whose tshark.exe runs the script "fake_tshark.sh" of the working directory.
std::filesystem::path fake_tshark_directory();

/// Makes the fake tshark run this script (sh). Its arguments are tshark's: the capture is "$4".
void fake_tshark_runs(std::string_view script);

/// Makes the fake tshark print this text.
void fake_tshark_prints(std::string_view output);

/// The eight exports.
struct sink_exports {
    explicit sink_exports(const shared_library& library);

    kivra_sink_init_parameters_function* init_parameters;
    kivra_sink_version_function* version;
    kivra_sink_init_function* init;
    kivra_sink_data_function* data;
    kivra_sink_complete_function* complete;
    kivra_sink_cancel_function* cancel;
    kivra_sink_get_last_error_function* get_last_error;
    kivra_sink_release_function* release;
};

using error_entry = std::pair<std::string, std::uint32_t>;

class host {
  public:
    explicit host(const std::filesystem::path& plugin = plugin_file());
    ~host();
    host(const host&) = delete;
    host& operator=(const host&) = delete;

    using parameter_list = std::vector<std::pair<std::string, std::string>>;

    /// A parameter block with this host's callbacks; it refers to the list's texts.
    kivra_init_parameters block(const parameter_list& parameters);

    std::int32_t init(const parameter_list& parameters);
    std::int32_t init_with_fake_tshark(const std::filesystem::path& parameter_file = {});
    std::int32_t data(const std::string& format, std::string_view payload,
                      std::uint64_t timestamp = 0);
    error_entry last_error();
    std::int32_t release();

    /// Called with each message of the log, after it was noted.
    std::function<void()> on_log;
    /// Called with each chunk that is handed back, after its text was noted.
    std::function<void(const kivra_annotated_chunk&)> on_chunk;

    std::vector<log_entry> logs;
    std::vector<std::string> texts;
    std::vector<error_entry> init_errors;

    /// The log without the timing messages.
    std::vector<std::string> messages() const;
    /// The one document handed back so far.
    nlohmann::json document() const;

  private:
    shared_library library_;

  public:
    const sink_exports exports;
    kivra_sink_context* context = nullptr;
};

/// Whether a message is the timing message: "tshark processing took: ", digits, "ms".
bool is_timing(const std::string& message);

}  // namespace KIVRA::TSHARK::TESTING
