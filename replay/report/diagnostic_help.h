/// What the failures and log messages of a run mean for the person who reads them.
#pragma once

#include <string_view>

#include "replay/record/outcome.h"
#include "replay/record/record_failure.h"

namespace KIVRA::TSHARK::REPLAY {

/// @return sentences that live as long as the program; empty where the text says enough
std::string_view help_for(const record_failure& failure);
std::string_view help_for(const log_message& message);

}  // namespace KIVRA::TSHARK::REPLAY
