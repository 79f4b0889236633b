#include "replay/message/nas_message.h"

#include <string>

#include <gmock/gmock.h>

#include "replay/record/emm_causes.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

std::string name_of(const json& layer) {
    return describe_nas_message(layer).name;
}

TEST(nas_messages, are_named_by_their_types) {
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_emm_type", "0x42"}}), "Attach accept");
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_emm_type", "0x69"}}), "Uplink generic NAS transport");
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_esm_type", "0xd9"}}), "ESM information request");
}

TEST(nas_messages, are_named_by_decimal_numbers_as_well) {
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_emm_type", "73"}}), "Tracking area update accept");
}

TEST(nas_messages, are_named_in_the_fields_of_every_tshark) {
    EXPECT_EQ(name_of({{"nas-eps.nas_msg_emm_type", "0x42"}}), "Attach accept");
    EXPECT_EQ(name_of({{"nas-eps.nas_msg_esm_type", "0xd9"}}), "ESM information request");
}

TEST(nas_messages, have_the_esm_message_behind_the_emm_message) {
    EXPECT_EQ(
        name_of({{"nas_eps.nas_msg_emm_type", "0x41"},
                 {"ESM message container",
                  {{"nas_eps.emm.esm_msg_cont_tree", {{"nas_eps.nas_msg_esm_type", "0xd0"}}}}}}),
        "Attach request, PDN connectivity request");
}

TEST(nas_messages, are_named_by_the_first_type_of_several) {
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_emm_type", json::array({"0x42", "0x43"})}}),
              "Attach accept");
    EXPECT_EQ(name_of({{"a", {{"nas_eps.nas_msg_emm_type", "0x42"}}},
                       {"b", {{"nas_eps.nas_msg_emm_type", "0x43"}}}}),
              "Attach accept");
}

TEST(nas_messages, of_unknown_types_are_named_by_their_numbers) {
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_emm_type", "0x47"}}), "EMM message type 71");
    EXPECT_EQ(name_of({{"nas_eps.nas_msg_esm_type", "0xff"}}), "ESM message type 255");
}

message_direction direction_of(const json& layer) {
    return describe_nas_message(layer).direction;
}

TEST(nas_messages, tell_who_sends_them) {
    EXPECT_EQ(direction_of({{"nas_eps.nas_msg_emm_type", "0x41"}}), message_direction::uplink);
    EXPECT_EQ(direction_of({{"nas_eps.nas_msg_emm_type", "0x42"}}), message_direction::downlink);
    EXPECT_EQ(direction_of({{"nas_eps.nas_msg_esm_type", "0xd0"}}), message_direction::uplink);
    EXPECT_EQ(direction_of({{"nas_eps.nas_msg_esm_type", "0xd9"}}), message_direction::downlink);
    EXPECT_EQ(direction_of({{"nas_eps.security_header_type", "12"}}), message_direction::uplink);
    // Both sides send one.
    EXPECT_EQ(direction_of({{"nas_eps.nas_msg_emm_type", "0x60"}}), message_direction::unknown);
    EXPECT_EQ(direction_of({}), message_direction::unknown);
}

TEST(nas_messages, tell_who_detaches) {
    const auto request = [](const char* field) {
        return json{{"nas_eps.nas_msg_emm_type", "0x45"}, {field, "1"}};
    };
    EXPECT_EQ(direction_of(request("nas_eps.emm.detach_type_ul")), message_direction::uplink);
    EXPECT_EQ(direction_of(request("nas-eps.emm.detach_type_dl")), message_direction::downlink);
}

TEST(nas_messages, without_a_type_may_be_service_requests) {
    EXPECT_EQ(name_of({{"nas_eps.security_header_type", "12"}}), "Service request");
    EXPECT_EQ(name_of({{"nas_eps.security_header_type", "15"}}), "Service request");
}

TEST(nas_messages, may_be_ciphered) {
    const auto message = describe_nas_message(
        {{"nas_eps.security_header_type", "2"}, {"nas_eps.ciphered_msg", "c1:e9"}});
    EXPECT_EQ(message.name, "Ciphered NAS message");
    EXPECT_TRUE(message.is_ciphered);
    EXPECT_FALSE(message.is_procedure);
}

TEST(nas_messages, that_can_be_read_are_of_a_procedure) {
    const auto message = describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x61"}});
    EXPECT_FALSE(message.is_ciphered);
    EXPECT_TRUE(message.is_procedure);
}

TEST(nas_messages, may_have_no_name) {
    for (const json& layer :
         {json::object(), json("NAS"), json(), json::array({1}),
          json({{"nas_eps.security_header_type", "11"}}),
          json({{"nas_eps.nas_msg_emm_type", "x"}, {"gsm_a.nas_msg_emm_type", "0x42"}}),
          json({{"nas_eps.nas_msg_emm_type", 0x42}, {"nas_msg_emm_type", "0x42"}}),
          json({{"nas_eps.nas_msg_emm_type", json::array()}})}) {
        EXPECT_EQ(name_of(layer), "NAS message") << layer;
    }
}

message_kind kind_of(const char* member, const char* type) {
    return describe_nas_message({{member, type}}).kind;
}

TEST(nas_messages, may_be_requests_of_the_modem) {
    constexpr const char* emm = "nas_eps.nas_msg_emm_type";
    constexpr const char* esm = "nas_eps.nas_msg_esm_type";
    for (const auto* type : {"0x41", "0x48", "0x4c", "0x4d"}) {
        EXPECT_EQ(kind_of(emm, type), message_kind::request) << type;
    }
    for (const auto* type : {"0xd0", "0xd4", "0xd6"}) {
        EXPECT_EQ(kind_of(esm, type), message_kind::request) << type;
    }
    for (const auto* type : {"0x42", "0x45", "0x52", "0x55"}) {
        EXPECT_EQ(kind_of(emm, type), message_kind::other) << type;
    }
    for (const auto* type : {"0xc1", "0xc5", "0xc9", "0xcd", "0xd9"}) {
        EXPECT_EQ(kind_of(esm, type), message_kind::other) << type;
    }
}

TEST(nas_messages, may_be_rejects) {
    for (const auto* type : {"0x44", "0x4b", "0x4e", "0x54", "0x5f"}) {
        EXPECT_EQ(kind_of("nas_eps.nas_msg_emm_type", type), message_kind::reject) << type;
    }
    for (const auto* type : {"0xc3", "0xd1", "0xd7"}) {
        EXPECT_EQ(kind_of("nas_eps.nas_msg_esm_type", type), message_kind::reject) << type;
    }
}

TEST(nas_messages, are_of_the_outer_messages_kind) {
    EXPECT_EQ(describe_nas_message(
                  {{"nas_eps.nas_msg_emm_type", "0x42"}, {"nas_eps.nas_msg_esm_type", "0xd1"}})
                  .kind,
              message_kind::other);
    EXPECT_EQ(describe_nas_message(
                  {{"nas_eps.nas_msg_emm_type", "0x44"}, {"nas_eps.nas_msg_esm_type", "0xd0"}})
                  .kind,
              message_kind::reject);
}

TEST(nas_messages, give_the_causes_of_both_layers) {
    EXPECT_THAT(describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x44"},
                                      {"nas_eps.emm.cause", "19"},
                                      {"tree", {{"nas_eps.esm.cause", "0x1b"}}}})
                    .causes,
                ElementsAre(FieldsAre("EMM cause", "19: ESM failure"),
                            FieldsAre("ESM cause", "27: Missing or unknown APN")));
    EXPECT_THAT(describe_nas_message({{"nas_eps.nas_msg_emm_type", "0x42"}}).causes, IsEmpty());
}

TEST(nas_messages, give_every_cause_of_mobility_management) {
    for (const auto& [code, text] : emm_causes) {
        EXPECT_THAT(
            describe_nas_message({{"nas-eps.emm.cause", std::to_string(code)}}).causes,
            ElementsAre(FieldsAre("EMM cause", std::to_string(code) + ": " + std::string(text))));
    }
}

TEST(nas_messages, give_causes_that_are_not_defined) {
    EXPECT_THAT(describe_nas_message({{"nas_eps.emm.cause", "4"}}).causes,
                ElementsAre(FieldsAre("EMM cause", "4: undefined reason")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
