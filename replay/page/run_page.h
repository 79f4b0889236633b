/// The page of a run, which is built into the program: made of run.html, its styles and scripts.
#pragma once

#include "replay/page/page_frame.h"

namespace KIVRA::TSHARK::REPLAY {

page_frame run_page();

}  // namespace KIVRA::TSHARK::REPLAY
