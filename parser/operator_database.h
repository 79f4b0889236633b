/// The list of mobile network operators (public assignments of E.212 codes), by which the NAS EPS
/// parser names the network of a modem.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::PARSER {

/// One object an operator, in the order of the list. Of its members, "mcc" and "mnc" (decimal
/// texts), "countryName" and "operator" (texts, or null) are read.
using operator_list = std::vector<nlohmann::json>;

/// @param text a JSON array of operators
/// @throws nlohmann::json::parse_error when the text is not JSON
/// @throws nlohmann::json::type_error 302 when it is not an array
operator_list load_operators(std::string_view text);

/// The list that is built into the program: read by the first call, shared and never changed from
/// then on. Any thread may call.
/// @return never null; the same list each time
/// @throws what `load_operators` throws; the next call then reads the list again
std::shared_ptr<const operator_list> built_in_operators();

/// The first operator of the list with these codes, or null. Codes compare as numbers: "01" and
/// "001" are the same, and "100 - 190" is 100. Operators that lack a code are passed over.
/// @return owned by the list
/// @throws nlohmann::json::type_error 302 at an operator with a code that is not a text
/// @throws std::invalid_argument "invalid stoi argument" at an operator with a code that begins
///     with no number, as the "?" of the shipped list
/// @throws std::out_of_range "stoi argument out of range" at an operator with a code too great
const nlohmann::json* find_operator(const operator_list& operators, std::int32_t mcc,
                                    std::int32_t mnc);

}  // namespace KIVRA::TSHARK::PARSER
