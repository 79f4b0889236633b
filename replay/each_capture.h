/// A run of kivra-replay over many captures, each a trace of its own.
#pragma once

#include "replay/options.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

/// Runs each capture in a process of its own, several at a time, and prints a line for each in the
/// order given, and counts in the end. What goes wrong with one capture costs only that one. An
/// interruption ends the processes; what is done by then is reported.
/// @param wanted with `each`
/// @return all_went_through, some_failed, or broken_off when no capture could be read
/// @throws std::runtime_error when the run can't start, reader_gone or std::runtime_error when the
///     report can't be written
exit_status replay_each(const options& wanted);

}  // namespace KIVRA::TSHARK::REPLAY
