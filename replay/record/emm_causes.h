/// The reasons that EPS mobility management gives for a reject.
#pragma once

#include <array>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

struct emm_cause {
    unsigned code;
    std::string_view text;
};

/// 3GPP TS 24.301, 9.9.3.9 (EMM cause) and annex A.
inline constexpr std::array<emm_cause, 39> emm_causes{{
    {2, "IMSI unknown in HSS"},
    {3, "Illegal UE"},
    {5, "IMEI not accepted"},
    {6, "Illegal ME"},
    {7, "EPS services not allowed"},
    {8, "EPS services and non-EPS services not allowed"},
    {9, "UE identity cannot be derived by the network"},
    {10, "Implicitly detached"},
    {11, "PLMN not allowed"},
    {12, "Tracking area not allowed"},
    {13, "Roaming not allowed in this tracking area"},
    {14, "EPS services not allowed in this PLMN"},
    {15, "No suitable cells in tracking area"},
    {16, "MSC temporarily not reachable"},
    {17, "Network failure"},
    {18, "CS domain not available"},
    {19, "ESM failure"},
    {20, "MAC failure"},
    {21, "Synch failure"},
    {22, "Congestion"},
    {23, "UE security capabilities mismatch"},
    {24, "Security mode rejected, unspecified"},
    {25, "Not authorized for this CSG"},
    {26, "Non-EPS authentication unacceptable"},
    {31, "Redirection to 5GCN required"},
    {35, "Requested service option not authorized in this PLMN"},
    {36, "IAB-node operation not authorized"},
    {39, "CS service temporarily not available"},
    {40, "No EPS bearer context activated"},
    {42, "Severe network failure"},
    {78, "PLMN not allowed to operate at the present UE location"},
    {95, "Semantically incorrect message"},
    {96, "Invalid mandatory information"},
    {97, "Message type non-existent or not implemented"},
    {98, "Message type not compatible with the protocol state"},
    {99, "Information element non-existent or not implemented"},
    {100, "Conditional IE error"},
    {101, "Message not compatible with the protocol state"},
    {111, "Protocol error, unspecified"},
}};

}  // namespace KIVRA::TSHARK::REPLAY
