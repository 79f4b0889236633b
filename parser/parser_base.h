/// What every packet parser is: an object that claims packets of tshark's output and writes what
/// it understands of them into the result document. Owned by the registry; used from the thread
/// that uses its context.
#pragma once

#include <cstdint>
#include <string>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "platform/host_call.h"

namespace KIVRA::TSHARK::PARSER {

class parser_base {
  public:
    /// @param log_user_data handed to every call of the log callback
    /// @param log_callback the host's; may be null
    parser_base(void* log_user_data, kivra_log_callback log_callback)
        : log_user_data_(log_user_data), log_callback_(log_callback) {}
    virtual ~parser_base() = default;
    parser_base(const parser_base&) = delete;
    parser_base& operator=(const parser_base&) = delete;

    /// Whether this parser handles the packet. Never throws.
    /// @param packet one element of tshark's JSON output
    virtual bool accepts(const nlohmann::json& packet) const = 0;

    /// Adds the packet's values to the result document, or replaces those that it holds already.
    /// @param packet a packet that this parser accepts
    /// @param result an object with one member a protocol, or null
    /// @throws nlohmann::json::exception for a value of a type that the parser does not expect;
    ///     what was written until then stays
    virtual void parse(const nlohmann::json& packet, nlohmann::json& result) const = 0;

    /// Sends an informational message to the host.
    void log(const std::string& message) const {
        if (log_callback_ != nullptr) {
            PLATFORM::call_host(log_callback_, this, log_user_data_, KIVRA_LOG_INFORMATION,
                                message.c_str());
        }
    }

  private:
    void* log_user_data_;
    kivra_log_callback log_callback_;
};

}  // namespace KIVRA::TSHARK::PARSER
