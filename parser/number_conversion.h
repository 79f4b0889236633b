/// Decimal texts to 32-bit numbers, with the same width and the same error texts on every platform.
///
/// As the standard library's conversions do, both skip leading white space, take an optional sign,
/// and stop at the first character that is not a digit.
#pragma once

#include <cstdint>
#include <string>

namespace KIVRA::TSHARK::PARSER {

/// @throws std::invalid_argument "invalid stoi argument" when the text begins with no number
/// @throws std::out_of_range "stoi argument out of range"
std::int32_t to_int(const std::string& text);

/// A negative number wraps around: "-1" is 4294967295.
/// @throws std::invalid_argument "invalid stoul argument" when the text begins with no number
/// @throws std::out_of_range "stoul argument out of range" when the magnitude exceeds 32 bits
std::uint32_t to_unsigned(const std::string& text);

}  // namespace KIVRA::TSHARK::PARSER
