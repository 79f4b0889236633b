// What messages do to a connection.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/message/describe_message.h"
#include "replay/message/nas_message.h"
#include "replay/message/rrc_message.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using event = message_event;

/// @param channel for example "UL_CCCH_Message_NB"
message_description described(const std::string& channel, const std::string& message,
                              const json& content = json::object()) {
    return describe_rrc_message(
        {{"lte-rrc." + channel + "_element",
          {{"lte-rrc.message_tree", {{"lte-rrc." + message + "_element", content}}}}}});
}

event event_of(const std::string& channel, const std::string& message) {
    return described(channel, message).event;
}

std::string cause_of(const std::string& channel, const std::string& message,
                     const std::string& field, const std::string& number) {
    return described(channel, message,
                     {{"lte-rrc.criticalExtensions_tree", {{"lte-rrc." + field, number}}}})
        .connection_cause;
}

TEST(message_events, begin_connections) {
    EXPECT_EQ(event_of("UL_CCCH_Message", "rrcConnectionRequest"), event::connection_request);
    EXPECT_EQ(event_of("UL_CCCH_Message", "rrcConnectionResumeRequest_r13"),
              event::connection_request);
    EXPECT_EQ(event_of("UL_CCCH_Message", "rrcEarlyDataRequest_r15"), event::connection_request);
    EXPECT_EQ(event_of("UL_CCCH_Message_NB", "rrcConnectionRequest_r13"),
              event::connection_request);
}

TEST(message_events, end_connections) {
    EXPECT_EQ(event_of("DL_DCCH_Message_NB", "rrcConnectionRelease_r13"), event::connection_end);
    EXPECT_EQ(event_of("DL_DCCH_Message", "rrcConnectionRelease"), event::connection_end);
    EXPECT_EQ(event_of("DL_CCCH_Message", "rrcConnectionReject"), event::connection_end);
    EXPECT_EQ(event_of("DL_CCCH_Message", "rrcEarlyDataComplete_r15"), event::connection_end);
}

TEST(message_events, do_not_begin_or_end_with_a_reestablishment) {
    EXPECT_EQ(event_of("UL_CCCH_Message", "rrcConnectionReestablishmentRequest"), event::none);
    EXPECT_EQ(event_of("DL_CCCH_Message", "rrcConnectionReestablishmentReject"), event::none);
}

TEST(message_events, are_content_of_the_dedicated_channels) {
    EXPECT_EQ(event_of("DL_DCCH_Message", "dlInformationTransfer"), event::content);
    EXPECT_EQ(event_of("UL_DCCH_Message", "rrcConnectionSetupComplete"), event::content);
    EXPECT_EQ(event_of("DL_CCCH_Message", "rrcConnectionSetup"), event::none);
    EXPECT_EQ(event_of("BCCH_DL_SCH_Message", "systemInformation"), event::none);
}

TEST(message_events, are_paging) {
    EXPECT_EQ(event_of("PCCH_Message", "paging"), event::paging);
}

TEST(message_events, are_content_or_updates_of_nas) {
    EXPECT_EQ(describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x41"}}).event, event::content);
    EXPECT_EQ(describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x48"}}).event,
              event::update_request);
    EXPECT_EQ(describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x49"}}).event, event::content);
}

TEST(message_events, are_content_of_ip) {
    const std::vector<std::uint8_t> packet{0x60, 0};
    EXPECT_EQ(describe_record({.format = "ip", .payload = packet}).event, event::content);
    EXPECT_EQ(describe_record({.format = "http", .payload = packet}).event, event::none);
}

TEST(connection_causes, are_those_of_requests) {
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionRequest", "establishmentCause", "0"),
              "emergency");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionRequest", "establishmentCause", "2"),
              "mt-Access");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionRequest", "establishmentCause", "4"),
              "mo-Data");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionResumeRequest_r13", "resumeCause_r13", "7"),
              "mt-EDT");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionResumeRequest_r13", "resumeCause_r13", "3"),
              "mo-Signalling");
}

TEST(connection_causes, of_narrowband_are_others) {
    EXPECT_EQ(
        cause_of("UL_CCCH_Message_NB", "rrcConnectionRequest_r13", "establishmentCause_r13", "0"),
        "mt-Access");
    EXPECT_EQ(
        cause_of("UL_CCCH_Message_NB", "rrcConnectionRequest_r13", "establishmentCause_r13", "3"),
        "mo-ExceptionData");
    EXPECT_EQ(
        cause_of("UL_CCCH_Message_NB", "rrcConnectionResumeRequest_r13", "resumeCause_r13", "2"),
        "mo-Data");
}

TEST(connection_causes, of_early_data_are_others) {
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcEarlyDataRequest_r15", "establishmentCause_r15", "0"),
              "mo-Data");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcEarlyDataRequest_r15", "establishmentCause_r15", "1"),
              "delayTolerantAccess");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcEarlyDataRequest_r15", "establishmentCause_r15", "2"),
              "");
    EXPECT_EQ(
        cause_of("UL_CCCH_Message_NB", "rrcEarlyDataRequest_r15", "establishmentCause_r15", "1"),
        "mo-ExceptionData");
    EXPECT_EQ(
        cause_of("UL_CCCH_Message_NB", "rrcEarlyDataRequest_r15", "establishmentCause_r15", "3"),
        "mt-Access");
}

TEST(connection_causes, have_no_name_where_the_number_has_none) {
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionRequest", "establishmentCause", "7"), "");
    EXPECT_EQ(cause_of("UL_CCCH_Message", "rrcConnectionRequest", "establishmentCause", "x"), "");
    EXPECT_EQ(described("UL_CCCH_Message", "rrcConnectionRequest").connection_cause, "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
