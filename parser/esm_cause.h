/// The reasons that the network gives in an ESM cause information element.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace KIVRA::TSHARK::PARSER {

struct esm_cause {
    std::uint8_t code;
    std::string_view reason;
};

/// 3GPP TS 24.301, 9.9.4.4 (ESM cause).
inline constexpr std::array<esm_cause, 48> esm_cause_table{{
    {8, "Operator Determined Barring"},
    {26, "Insufficient resources"},
    {27, "Missing or unknown APN"},
    {28, "Unknown PDN type"},
    {29, "User authentication failed"},
    {30, "Request rejected by Serving GW or PDN GW"},
    {31, "Request rejected, unspecified"},
    {32, "Service option not supported"},
    {33, "Requested service option not subscribed"},
    {34, "Service option temporarily out of order"},
    {35, "PTI already in use"},
    {36, "Regular deactivation"},
    {37, "EPS QoS not accepted"},
    {38, "Network failure"},
    {39, "Reactivation requested"},
    {41, "Semantic error in the TFT operation"},
    {42, "Syntactical error in the TFT operation"},
    {43, "Invalid EPS bearer identity"},
    {44, "Semantic errors in packet filter(s)"},
    {45, "Syntactical errors in packet filter(s)"},
    {46, "Unused"},
    {47, "PTI mismatch"},
    {49, "Last PDN disconnection not allowed"},
    {50, "PDN type IPv4 only allowed"},
    {51, "PDN type IPv6 only allowed"},
    {52, "Single address bearers only allowed"},
    {53, "ESM information not received"},
    {54, "PDN connection does not exist"},
    {55, "Multiple PDN connections for a given APN not allowed"},
    {56, "Collision with network initiated request"},
    {57, "PDN type IPv4v6 only allowed"},
    {58, "PDN type non IP only allowed"},
    {59, "Unsupported QCI value"},
    {60, "Bearer handling not supported"},
    {61, "PDN type Ethernet only allowed"},
    {65, "Maximum number of EPS bearers reached"},
    {66, "Requested APN not supported in current RAT and PLMN combination"},
    {81, "Invalid PTI value"},
    {95, "Semantically incorrect message"},
    {96, "Invalid mandatory information"},
    {97, "Message type non-existent or not implemented"},
    {98, "Message type not compatible with the protocol state"},
    {99, "Information element non-existent or not implemented"},
    {100, "Conditional IE error"},
    {101, "Message not compatible with the protocol state"},
    {111, "Protocol error, unspecified"},
    {112, "APN restriction value incompatible with active EPS bearer context"},
    {113, "Multiple accesses to a PDN connection not allowed"},
}};

/// The reason for a cause without an entry in the table.
inline constexpr std::string_view undefined_esm_cause = "undefined reason";

/// @param code the cause, of which the low 8 bits count
/// @return the text of the table, or `undefined_esm_cause`
std::string_view esm_cause_reason(std::int32_t code);

}  // namespace KIVRA::TSHARK::PARSER
