/// What the operator list says of a network's codes.
#pragma once

#include <string>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// "262/02 Vodafone D2 GmbH, Germany": the codes and every name that the built-in list has for
/// them, "; " between names; the codes alone where it has none. Codes are compared as numbers.
/// @param mcc, mnc decimal digits, without the leading zeros or with them. What has one digit for
///     a network code is given two, or what the list has.
/// @throws nlohmann::json::exception when the list can't be read
std::string operator_text(std::string_view mcc, std::string_view mnc);

}  // namespace KIVRA::TSHARK::REPLAY
