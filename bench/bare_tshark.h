/// The tshark command of a data call, without the plug-in and without a shell.
#pragma once

#include <filesystem>

namespace KIVRA::TSHARK::BENCH {

/// Waits until tshark has ended. Its standard streams are those that the plug-in gives it.
/// @throws std::runtime_error when it fails
void run_bare_tshark(const std::filesystem::path& executable, const std::filesystem::path& capture,
                     const std::filesystem::path& output);

}  // namespace KIVRA::TSHARK::BENCH
