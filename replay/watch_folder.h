/// A run of kivra-replay over the captures that come into a folder.
#pragma once

#include "replay/options.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

/// Runs each capture once that stands in the folder or comes into it, until it is interrupted. The
/// table says which are done, also to the next run.
/// @param wanted with `watch`
/// @return as `replay_each`
/// @throws std::runtime_error when the run can't start or go on, the folder goes away, or a row or
///     summary can't be written; reader_gone
exit_status watch_folder(const options& wanted);

}  // namespace KIVRA::TSHARK::REPLAY
