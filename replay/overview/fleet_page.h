/// The overview of many captures, which is built into the program: made of overview.html, its
/// styles and scripts, and what it shares with the page of a run.
#pragma once

#include "replay/page/page_frame.h"

namespace KIVRA::TSHARK::REPLAY {

page_frame fleet_page();

}  // namespace KIVRA::TSHARK::REPLAY
