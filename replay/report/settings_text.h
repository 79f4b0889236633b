/// The settings of a trace for people, in 80 columns: who asked for what and got what, what the
/// cell says, what was measured, and what follows.
#pragma once

#include <iosfwd>

#include "replay/trace/trace.h"

namespace KIVRA::TSHARK::REPLAY {

void print_settings(std::ostream& out, const trace& told);

}  // namespace KIVRA::TSHARK::REPLAY
