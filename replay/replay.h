/// A run of kivra-replay.
#pragma once

#include <string_view>

#include "replay/options.h"

namespace KIVRA::TSHARK::REPLAY {

enum exit_status {
    all_went_through = 0,
    some_failed = 1,
    broken_off = 2,
};

/// Runs the records of the captures and reports. All that can fail early does so before a record is
/// read. Captures that break, and an interruption, end their part of the run; what was read until
/// then is reported. Errors of captures go to the standard error.
/// @throws std::runtime_error when the run can't start, reader_gone or std::runtime_error when the
///     report can't be written
exit_status replay(const options& wanted);

/// One line on the standard error.
void print_error(std::string_view message);

}  // namespace KIVRA::TSHARK::REPLAY
