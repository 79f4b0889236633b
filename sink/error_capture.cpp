#include "sink/error_capture.h"

#include <exception>

#include "platform/host_call.h"

namespace KIVRA::TSHARK::SINK {

std::int32_t capture_data_errors(sink_context& context, const std::function<void()>& body) {
    try {
        body();
        return KIVRA_RESULT_SUCCESS;
    } catch (const std::exception& error) {
        context.last_error_text = error.what();
    } catch (...) {
        context.last_error_text = "unknown error";
    }
    context.last_error_code = KIVRA_RESULT_FAILED;
    return KIVRA_RESULT_FAILED;
}

std::int32_t capture_init_errors(kivra_error_callback callback, void* user_data,
                                 const std::function<void()>& body) noexcept {
    try {
        body();
        return KIVRA_RESULT_SUCCESS;
    } catch (const std::exception& error) {
        report_error(callback, user_data, error.what(), KIVRA_RESULT_INIT_FAILED);
    } catch (...) {
        report_error(callback, user_data, "unknown fatal error from pcap sink init",
                     KIVRA_RESULT_INIT_FAILED);
    }
    return KIVRA_RESULT_INIT_FAILED;
}

void report_error(kivra_error_callback callback, void* user_data, const char* message,
                  std::uint32_t code) noexcept {
    if (callback == nullptr) {
        return;
    }
    try {
        const kivra_error error{message, code, {}};
        PLATFORM::call_host(callback, user_data, &error);
    } catch (...) {
        // It is the host's own failure, and there is nobody left to tell.
    }
}

}  // namespace KIVRA::TSHARK::SINK
