/// The runners between the exports and the work behind them: they turn what is thrown into a result
/// code and pass the reason on through the channel that the host has for it.
#pragma once

#include <cstdint>
#include <functional>

#include <kivra/tshark_sink.h>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::SINK {

/// Runs a data call. A success leaves the context's last error as it was.
/// @return 0, or 100 after the body has thrown: the last error is then the exception's text, or
///     "unknown error" for anything but a standard exception
/// @throws std::bad_alloc when there is no memory for the text
std::int32_t capture_data_errors(sink_context& context, const std::function<void()>& body);

/// Runs an initialisation.
/// @return 0, or 1 after the body has thrown: the callback (may be null) has then been called once,
///     with code 1 and the exception's text, or "unknown fatal error from pcap sink init" for
///     anything but a standard exception
std::int32_t capture_init_errors(kivra_error_callback callback, void* user_data,
                                 const std::function<void()>& body) noexcept;

/// Reports an error to the host. Whatever the callback (may be null) throws ends here.
void report_error(kivra_error_callback callback, void* user_data, const char* message,
                  std::uint32_t code) noexcept;

}  // namespace KIVRA::TSHARK::SINK
