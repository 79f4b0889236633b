/// One instance of the sink: all that lives from `kivra_sink_init` to `kivra_sink_release`. Owned
/// by the host through its opaque pointer; used from one thread at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "parser/parser_registry.h"

namespace KIVRA::TSHARK {

/// The values of the trace that the next parameter file is written from; each is empty until a
/// record gives it, and again after a file was written.
struct profile_texts {
    /// Requested active time: the octet of T3324 as eight binary digits.
    std::string t3324_bitmask;
    /// Requested periodic tracking area update: the octet of T3412 extended, likewise.
    std::string t3412_extended_bitmask;
    /// Milliseconds.
    std::string cdrx_inactive_timer;
    /// A count.
    std::string idrx_reps;
    /// Seconds.
    std::string idrx_int;
    /// The long cycle's index, taken through the table of DRX timers.
    std::string cdrx_int;
    /// Milliseconds.
    std::string cdrx_on_duration;
};

class sink_context {
  public:
    /// @param callback the host's log callback, called with the user data; may be null
    /// @param executable the program that runs for each record
    /// @param output where its output goes; nothing exists there yet
    /// @param parameters the power-profile parameter file; empty for none
    /// @throws nlohmann::json::exception when the operator list can't be read
    sink_context(void* user_data, kivra_log_callback callback, std::filesystem::path executable,
                 std::filesystem::path output, std::filesystem::path parameters);

    /// Deletes tshark's output should it exist; one that cannot be deleted stays.
    ~sink_context();

    sink_context(const sink_context&) = delete;
    sink_context& operator=(const sink_context&) = delete;

    /// Sends a message to the host.
    void log(kivra_log_level level, const std::string& message) const;

    // The order is that of construction; destruction runs in reverse.
    void* const log_user_data;
    const kivra_log_callback log_callback;
    const std::filesystem::path tshark_executable;
    const std::filesystem::path tshark_output;
    /// Why the last failed data call failed, and 100; empty and 0 before any failure.
    std::string last_error_text;
    std::uint32_t last_error_code = 0;
    /// {"nas-eps": {"pdn": ...}}: the PDN details and the IPv6 prefix, carried from one data call
    /// to the next; null until there are any.
    nlohmann::json carried_state;
    const std::filesystem::path parameter_file;
    const PARSER::parser_registry parsers;
    profile_texts texts;
};

}  // namespace KIVRA::TSHARK
