/// SIGINT, as Ctrl-C sends it.
#pragma once

namespace KIVRA::TSHARK::REPLAY {

/// Has the first SIGINT noted instead of ending the process; the second one ends it. A read that
/// waits is broken off.
void note_interruptions();

bool interrupted();

}  // namespace KIVRA::TSHARK::REPLAY
