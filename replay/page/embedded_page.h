/// The page's own parts, which are built into the program: what stands before a report's data, with
/// the style, and what stands behind it, with the scripts. Made of the files beside this one.
#pragma once

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// UTF-8; lives as long as the program.
std::string_view page_head();
std::string_view page_tail();

}  // namespace KIVRA::TSHARK::REPLAY
