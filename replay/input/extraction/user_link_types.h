/// Link types for private use: what their captures are likely to hold.
#pragma once

#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// What to do about a capture of that link type.
std::string advice_on_user_link_type(int number);

}  // namespace KIVRA::TSHARK::REPLAY
