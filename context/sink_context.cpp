#include "context/sink_context.h"

#include <utility>

#include "context/file_status.h"
#include "platform/host_call.h"

namespace KIVRA::TSHARK {

sink_context::sink_context(void* user_data, kivra_log_callback callback,
                           std::filesystem::path executable, std::filesystem::path output,
                           std::filesystem::path parameters)
    : log_user_data(user_data),
      log_callback(callback),
      tshark_executable(std::move(executable)),
      tshark_output(std::move(output)),
      parameter_file(std::move(parameters)),
      parsers(PARSER::make_parser_registry(user_data, callback)) {}

sink_context::~sink_context() {
    try {
        if (entry_exists(tshark_output)) {
            remove_entry(tshark_output);
        }
    } catch (const std::filesystem::filesystem_error&) {
        // A release has nobody to tell and must go on.
    }
}

void sink_context::log(kivra_log_level level, const std::string& message) const {
    if (log_callback != nullptr) {
        PLATFORM::call_host(log_callback, this, log_user_data, level, message.c_str());
    }
}

}  // namespace KIVRA::TSHARK
