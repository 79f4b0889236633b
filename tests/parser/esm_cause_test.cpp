#include "parser/esm_cause.h"

#include <map>
#include <string_view>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::PARSER {
namespace {

const std::map<int, std::string_view> reasons{
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
};

TEST(esm_cause, has_the_reason_of_every_code_of_the_table_and_of_no_other) {
    ASSERT_EQ(reasons.size(), 48);
    for (int code = 0; code <= 255; ++code) {
        const auto reason = reasons.find(code);
        EXPECT_EQ(esm_cause_reason(code),
                  reason != reasons.end() ? reason->second : "undefined reason")
            << code;
    }
}

TEST(esm_cause, has_no_reason_for_codes_between_and_around_the_rows) {
    for (const int code : {0, 1, 40, 48, 62, 63, 64, 255}) {
        EXPECT_EQ(esm_cause_reason(code), "undefined reason") << code;
    }
}

TEST(esm_cause, reports_the_unused_code_like_any_other) {
    EXPECT_EQ(esm_cause_reason(46), "Unused");
}

TEST(esm_cause, looks_up_the_low_octet_only) {
    EXPECT_EQ(esm_cause_reason(264), "Operator Determined Barring");
    EXPECT_EQ(esm_cause_reason(283), "Missing or unknown APN");
    EXPECT_EQ(esm_cause_reason(256), "undefined reason");
    EXPECT_EQ(esm_cause_reason(-248), "Operator Determined Barring");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
