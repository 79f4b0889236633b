/// A run of kivra-replay over many captures, each a trace of its own.
#pragma once

#include <cstddef>

#include "replay/fleet/capture_job.h"
#include "replay/options.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

/// Runs each capture in a process of its own, several at a time, and prints a line for each in the
/// order given, and counts in the end. What goes wrong with one capture costs only that one. An
/// interruption ends the processes; what is done by then is reported, also where a process can't be
/// started or write its files.
/// @param wanted with `each`
/// @return all_went_through, some_failed, or broken_off when no capture could be read
/// @throws std::runtime_error when the run can't start or go on, reader_gone or std::runtime_error
///     when the report can't be written
exit_status replay_each(const options& wanted);

/// This program with the options that a capture's own run shares with that of all.
/// @throws std::runtime_error when there is no tshark
capture_program program_for(const options& wanted);

/// How many captures to run at a time.
std::size_t jobs_of(const options& wanted);

}  // namespace KIVRA::TSHARK::REPLAY
