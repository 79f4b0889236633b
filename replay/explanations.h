/// What the complaints of a run mean for the person who reads them.
#pragma once

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// @param complaint why a record failed, or a message of the plug-in's log
/// @return sentences; empty for a complaint that speaks for itself
std::string_view explanation_of(std::string_view complaint);

}  // namespace KIVRA::TSHARK::REPLAY
