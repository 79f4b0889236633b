#include "replay/message/rrc_message.h"

#include <string>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;

/// A channel's dissection with a message two choices down.
json layer_of(const std::string& channel, const std::string& message, const json& content = {}) {
    const json choice{
        {"lte-rrc." + message + "_element", content.is_null() ? json::object() : content}};
    return {{"lte_rrc", "LTE Radio Resource Control (RRC) protocol"},
            {"lte-rrc." + channel + "_element",
             {{"per.choice_index", "0"},
              {"lte-rrc.message", "0"},
              {"lte-rrc.message_tree",
               {{"per.choice_index", "1"}, {"lte-rrc.c1", "1"}, {"lte-rrc.c1_tree", choice}}}}}};
}

std::string name_of(const std::string& channel, const std::string& message,
                    const json& content = {}) {
    return describe_rrc_message(layer_of(channel, message, content)).name;
}

json blocks(std::initializer_list<const char*> names) {
    json list = json::object();
    int item = 0;
    for (const auto* name : names) {
        list["Item " + std::to_string(item++)] = {
            {"lte-rrc.sib_TypeAndInfo_item", "0"},
            {"lte-rrc.sib_TypeAndInfo_item_tree",
             {{std::string("lte-rrc.") + name, json::object()}}}};
    }
    return {{"lte-rrc.criticalExtensions_tree",
             {{"lte-rrc.systemInformation_r8_element",
               {{"lte-rrc.sib_TypeAndInfo", "1"}, {"lte-rrc.sib_TypeAndInfo_tree", list}}}}}};
}

TEST(rrc_messages, are_named_by_channel_and_type) {
    EXPECT_EQ(name_of("PCCH_Message", "paging"), "PCCH, Paging");
    EXPECT_EQ(name_of("DL_DCCH_Message", "securityModeCommand"), "DL-DCCH, SecurityModeCommand");
}

TEST(rrc_messages, tell_who_sends_them) {
    const auto direction = [](const char* channel) {
        return describe_rrc_message(layer_of(channel, "message")).direction;
    };
    EXPECT_EQ(direction("UL_DCCH_Message"), message_direction::uplink);
    EXPECT_EQ(direction("UL_CCCH_Message_NB"), message_direction::uplink);
    EXPECT_EQ(direction("PCCH_Message"), message_direction::downlink);
    EXPECT_EQ(direction("BCCH_DL_SCH_Message"), message_direction::downlink);
    EXPECT_EQ(direction("SBCCH_SL_BCH_Message"), message_direction::unknown);
}

TEST(rrc_messages, have_names_that_begin_with_capitals) {
    EXPECT_EQ(name_of("UL_CCCH_Message", "rrcConnectionRequest"), "UL-CCCH, RRCConnectionRequest");
    EXPECT_EQ(name_of("UL_DCCH_Message", "ulInformationTransfer"),
              "UL-DCCH, ULInformationTransfer");
    EXPECT_EQ(name_of("DL_DCCH_Message", "dlInformationTransfer"),
              "DL-DCCH, DLInformationTransfer");
    EXPECT_EQ(name_of("DL_DCCH_Message", "ueCapabilityEnquiry"), "DL-DCCH, UECapabilityEnquiry");
    EXPECT_EQ(name_of("DL_DCCH_Message", "csfbParametersResponseCDMA2000"),
              "DL-DCCH, CSFBParametersResponseCDMA2000");
    EXPECT_EQ(name_of("UL_DCCH_Message", "scgFailureInformation_r12"),
              "UL-DCCH, SCGFailureInformation-r12");
}

TEST(rrc_messages, of_narrowband_have_its_ending_and_no_release) {
    EXPECT_EQ(name_of("UL_CCCH_Message_NB", "rrcConnectionRequest_r13"),
              "UL-CCCH NB, RRCConnectionRequest-NB");
    EXPECT_EQ(name_of("DL_DCCH_Message_NB", "dlInformationTransfer_r13"),
              "DL-DCCH NB, DLInformationTransfer-NB");
    EXPECT_EQ(name_of("PCCH_Message_NB", "paging_r13"), "PCCH NB, Paging-NB");
    EXPECT_EQ(name_of("UL_DCCH_Message_NB", "ueInformation_rest"),
              "UL-DCCH NB, UEInformation-rest-NB");
}

TEST(rrc_messages, list_the_blocks_of_system_information) {
    EXPECT_EQ(name_of("BCCH_DL_SCH_Message", "systemInformation",
                      blocks({"sib2_element", "sib3_element", "sib12_v920_element",
                              "sib24_r15_element"})),
              "BCCH-DL-SCH, SystemInformation [SIB2 SIB3 SIB12 SIB24]");
    EXPECT_EQ(
        name_of("BCCH_DL_SCH_Message_NB", "systemInformation_r13", blocks({"sib2_r13_element"})),
        "BCCH-DL-SCH NB, SystemInformation-NB [SIB2]");
}

TEST(rrc_messages, list_no_blocks_where_there_are_none) {
    EXPECT_EQ(name_of("BCCH_DL_SCH_Message", "systemInformation", blocks({"sibling_element"})),
              "BCCH-DL-SCH, SystemInformation");
    EXPECT_EQ(
        name_of("BCCH_DL_SCH_Message", "systemInformationBlockType1", blocks({"sib2_element"})),
        "BCCH-DL-SCH, SystemInformationBlockType1");
    EXPECT_EQ(name_of("PCCH_Message", "paging", blocks({"sib2_element"})), "PCCH, Paging");
}

TEST(rrc_messages, on_the_bch_are_master_information_blocks) {
    for (const auto& [element, name] :
         {std::pair("BCCH_BCH_Message", "BCCH-BCH, MasterInformationBlock"),
          std::pair("BCCH_BCH_Message_NB", "BCCH-BCH NB, MasterInformationBlock")}) {
        EXPECT_EQ(describe_rrc_message({{"lte-rrc." + std::string(element) + "_element",
                                         {{"lte-rrc.message_element", json::object()}}}})
                      .name,
                  name);
    }
}

TEST(rrc_messages, of_a_connection_are_of_a_procedure) {
    for (const auto* message : {"rrcConnectionSetup", "mobilityFromEUTRACommand"}) {
        EXPECT_TRUE(describe_rrc_message(layer_of("DL_DCCH_Message", message)).is_procedure);
    }
    for (const auto* message : {"paging", "dlInformationTransfer", "securityModeCommand"}) {
        EXPECT_FALSE(describe_rrc_message(layer_of("DL_DCCH_Message", message)).is_procedure);
    }
}

TEST(rrc_messages, may_have_a_channel_alone) {
    for (const json& content :
         {json::object(), json("text"), json({{"lte-rrc.message_tree", {{"lte-rrc.c1", "1"}}}})}) {
        EXPECT_EQ(describe_rrc_message({{"lte-rrc.PCCH_Message_element", content}}).name, "PCCH");
    }
}

TEST(rrc_messages, may_have_no_name) {
    for (const json& layer : {json::object(), json("text"), json(), json::array({1}),
                              json({{"lte-rrc.HandoverCommand_element", json::object()}})}) {
        EXPECT_EQ(describe_rrc_message(layer).name, "LTE RRC") << layer;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
