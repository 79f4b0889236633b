/// Tables of several runs over many captures, made one.
#pragma once

#include "replay/options.h"
#include "replay/replay.h"

namespace KIVRA::TSHARK::REPLAY {

/// Joins the rows in the order given, and tells of each as if its capture had been run now. Nothing
/// is written unless all tables can be read and no capture stands in two of them.
/// @param wanted with `from_tables`
/// @return as `replay_each`
/// @throws std::runtime_error when a table can't be joined, reader_gone or std::runtime_error when
///     the report can't be written
exit_status join_tables(const options& wanted);

}  // namespace KIVRA::TSHARK::REPLAY
