/// The plug-in as its host sees it: loaded by file name, its exports looked up by name, and an
/// instance of its sink that records are run through. Used from one thread.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <kivra/tshark_sink.h>

#include "platform/console/shared_library.h"
#include "replay/runner/message_reader.h"
#include "replay/runner/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

/// What a plug-in tells of itself before it is started.
struct plugin_description {
    /// "0.13.1", for example.
    std::string version;
    /// The JSON Schema of its initialisation parameters.
    std::string parameter_schema;
};

/// A loaded plug-in; unloaded with the object.
class plugin {
  public:
    /// @throws std::runtime_error when the file can't be loaded or lacks an export
    explicit plugin(const std::filesystem::path& file);

    /// Asks the plug-in what it is.
    /// @throws std::runtime_error when it fails to tell
    plugin_description describe() const;

  private:
    friend class plugin_sink;

    PLATFORM::shared_library library_;
    kivra_sink_version_function* version_;
    kivra_sink_init_parameters_function* init_parameters_;
    kivra_sink_init_function* init_;
    kivra_sink_data_function* data_;
    kivra_sink_complete_function* complete_;
    kivra_sink_cancel_function* cancel_;
    kivra_sink_get_last_error_function* get_last_error_;
    kivra_sink_release_function* release_;
};

/// An instance of the plug-in's sink; released with the object, and cancelled before that unless it
/// was completed.
class plugin_sink final : public record_runner {
  public:
    /// @param tshark the executable in that directory, for what the plug-in does not tell of
    /// records
    /// @param session whether one tshark is to serve all records
    /// @throws std::runtime_error with the plug-in's reason when it refuses
    plugin_sink(std::shared_ptr<const plugin> loaded, const std::filesystem::path& tshark_directory,
                const std::filesystem::path& tshark, const std::filesystem::path& profile,
                bool session = false);
    ~plugin_sink() override;
    plugin_sink(const plugin_sink&) = delete;
    plugin_sink& operator=(const plugin_sink&) = delete;

    void submit(const trace_record& record, const outcome_handler& handler) override;
    void finish(const outcome_handler& /*handler*/) override {}
    void complete() override;

  private:
    void run(const trace_record& record);

    outcome current_;
    message_reader messages_;
    std::shared_ptr<const plugin> plugin_;
    kivra_sink_context* context_ = nullptr;
    bool completed_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
