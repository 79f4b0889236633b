#include "replay/input/extraction/extracted_packet.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "analysis/tshark/packet_splitter.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::Optional;

using bytes = std::vector<std::uint8_t>;

/// tshark's text for a packet with these layers besides the frame.
std::string text_of(const std::string& layers, const std::string& protocols = "",
                    const std::string& more_of_frame = "") {
    return R"([
  {
    "_index": "packets-2025-11-25",
    "_type": "doc",
    "_score": null,
    "_source": {
      "layers": {
        "frame": {
          "frame.encap_type": "1",
          "frame.time_epoch": "1764100000.150000000",
          "frame.number": "17",
          "frame.protocols": ")" +
           protocols + '"' + more_of_frame + "}" + (layers.empty() ? "" : ", ") + layers +
           "}}}\n]\n";
}

TEST(extracted_packets, have_a_number_and_a_time) {
    const auto packet = extract_messages(text_of(""));
    EXPECT_EQ(packet.number, 17U);
    EXPECT_EQ(packet.timestamp, 1'764'100'000'150'000U);
    EXPECT_THAT(packet.messages, IsEmpty());
    EXPECT_FALSE(packet.hides_messages);
    EXPECT_FALSE(packet.is_encrypted);
    EXPECT_EQ(packet.user_link_type, std::nullopt);
}

TEST(extracted_packets, hold_the_bytes_of_a_nas_layer) {
    EXPECT_THAT(extract_messages(text_of(R"("nas-eps_raw": ["0741Fe", 0, 3, 0, 1],
                                            "nas-eps": {})"))
                    .messages,
                ElementsAre(FieldsAre("nas-eps", bytes{0x07, 0x41, 0xfe}, false)));
}

TEST(extracted_packets, tell_that_they_were_cut_short) {
    const std::string nas = R"("nas-eps_raw": ["07", 0, 1, 0, 1], "nas-eps": {})";
    const auto sizes = [](const char* captured) {
        return R"(, "frame.len": "100", "frame.cap_len": ")" + std::string(captured) + '"';
    };
    EXPECT_EQ(extract_messages(text_of(nas, "", sizes("100"))).failure, std::nullopt);
    EXPECT_EQ(extract_messages(text_of(nas, "", sizes("99"))).failure,
              (record_failure{failure_kind::truncated_packet,
                              "cut short by the snapshot length: 99 of 100 bytes captured"}));
}

TEST(extracted_packets, hold_none_of_the_messages_that_an_icmp_message_quotes) {
    for (const std::string layer : {"icmp", "icmpv6"}) {
        const auto packet = extract_messages(
            text_of("\"" + layer + R"(": {}, "nas-eps_raw": ["07", 0, 1, 0, 1], "nas-eps": {})",
                    "eth:ip:" + layer + ":ip:udp:gsmtap:lte_rrc:nas-eps"));
        EXPECT_THAT(packet.messages, IsEmpty());
        EXPECT_FALSE(packet.hides_messages);
    }
}

TEST(extracted_packets, know_both_spellings_of_the_nas_layer) {
    EXPECT_THAT(
        extract_messages(text_of(R"("nas_eps_raw": ["07", 0, 1, 0, 1], "nas_eps": {})")).messages,
        ElementsAre(FieldsAre("nas-eps", bytes{0x07}, false)));
}

TEST(extracted_packets, name_the_dissector_of_an_rrc_message_by_its_channel) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["4001", 42, 2, 0, 1], "lte_rrc": {
            "lte-rrc.PCCH_Message_element_raw": ["40", 42, 1, 0, 1],
            "lte-rrc.PCCH_Message_element": {}})"))
                    .messages,
                ElementsAre(FieldsAre("lte_rrc.pcch", bytes{0x40, 0x01}, false)));
}

TEST(extracted_packets, do_not_take_the_texts_inside_an_rrc_layer_for_messages) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["40", 42, 1, 0, 1], "lte_rrc": {
            "lte_rrc_raw": ["40", 42, 1, 0, 1],
            "lte_rrc": "LTE Radio Resource Control (RRC) protocol",
            "lte-rrc.PCCH_Message_element": {
                "lte_rrc_raw": ["40", 42, 1, 0, 1],
                "lte_rrc": {"lte-rrc.PCCH_Message_element": {}}}})"))
                    .messages,
                ElementsAre(FieldsAre("lte_rrc.pcch", bytes{0x40}, false)));
}

TEST(extracted_packets, hold_no_rrc_message_of_no_channel) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["40", 42, 1, 0, 1], "lte_rrc": {
            "lte-rrc.HandoverPreparationInformation_element": {}})"))
                    .messages,
                IsEmpty());
}

TEST(extracted_packets, hold_layers_of_one_name_as_a_list) {
    EXPECT_THAT(
        extract_messages(text_of(R"("lte_rrc_raw": [["40", 0, 1, 0, 1], ["5152", 9, 2, 0, 1]],
            "lte_rrc": [{"lte-rrc.PCCH_Message_element": {}},
                        {"lte-rrc.DL_CCCH_Message_NB_element": {}}],
            "nas-eps_raw": [["07", 0, 1, 0, 1], ["0708", 0, 2, 0, 1]], "nas-eps": [{}, {}])"))
            .messages,
        ElementsAre(FieldsAre("lte_rrc.pcch", bytes{0x40}, false),
                    FieldsAre("lte_rrc.dl_ccch.nb", bytes{0x51, 0x52}, false),
                    FieldsAre("nas-eps", bytes{0x07}, true),
                    FieldsAre("nas-eps", bytes{0x07, 0x08}, true)));
}

TEST(extracted_packets, hold_messages_deep_in_lists_of_layers) {
    EXPECT_THAT(
        extract_messages(text_of(R"("s1ap": [
            {"value": {"nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {}}},
            {"value": {"tree": [[{"nas-eps_raw": ["02", 0, 1, 0, 1], "nas-eps": {}}]]}}])"))
            .messages,
        ElementsAre(FieldsAre("nas-eps", bytes{1}, false), FieldsAre("nas-eps", bytes{2}, false)));
}

TEST(extracted_packets, mark_nas_inside_an_rrc_message) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["40", 0, 1, 0, 1], "lte_rrc": {
            "lte-rrc.DL_DCCH_Message_element": {"tree": {
                "nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {}}}})"))
                    .messages,
                ElementsAre(FieldsAre("lte_rrc.dl_dcch", bytes{0x40}, false),
                            FieldsAre("nas-eps", bytes{1}, true)));
}

TEST(extracted_packets, mark_nas_in_the_layer_behind_an_rrc_message) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["40", 0, 1, 0, 1],
            "lte_rrc": {"lte-rrc.DL_DCCH_Message_element": {}},
            "nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {})"))
                    .messages,
                ElementsAre(FieldsAre("lte_rrc.dl_dcch", bytes{0x40}, false),
                            FieldsAre("nas-eps", bytes{1}, true)));
}

TEST(extracted_packets, do_not_mark_nas_in_a_layer_of_its_own_behind_an_rrc_message) {
    EXPECT_THAT(extract_messages(text_of(R"("lte_rrc_raw": ["40", 0, 1, 0, 1],
            "lte_rrc": {"lte-rrc.DL_DCCH_Message_element": {}},
            "s1ap": {"nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {}})"))
                    .messages,
                ElementsAre(FieldsAre("lte_rrc.dl_dcch", bytes{0x40}, false),
                            FieldsAre("nas-eps", bytes{1}, false)));
}

TEST(extracted_packets, do_not_look_into_a_nas_layer) {
    EXPECT_THAT(extract_messages(text_of(R"("nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {
            "nas-eps_raw": ["02", 0, 1, 0, 1], "nas-eps": {}})"))
                    .messages,
                ElementsAre(FieldsAre("nas-eps", bytes{1}, false)));
}

TEST(extracted_packets, hold_no_message_without_its_bytes) {
    for (const auto* raw : {R"("x": 1)", R"("nas-eps_raw": [])", R"("nas-eps_raw": "07")",
                            R"("nas-eps_raw": [7, 0])", R"("nas-eps_raw": null)"}) {
        EXPECT_THAT(extract_messages(text_of(std::string(raw) + R"(, "nas-eps": {})")).messages,
                    IsEmpty())
            << raw;
    }
}

TEST(extracted_packets, hold_a_nas_message_that_could_not_be_dissected) {
    EXPECT_THAT(extract_messages(text_of(R"("nas-eps_raw": ["07", 0, 1, 0, 1], "nas-eps": "NAS",
            "_ws.malformed": {})"))
                    .messages,
                ElementsAre(FieldsAre("nas-eps", bytes{7}, false)));
}

TEST(extracted_packets, hold_the_ip_packet_of_a_router_advertisement) {
    EXPECT_THAT(extract_messages(text_of(R"("ipv6_raw": ["6001", 14, 2, 0, 1], "ipv6": {},
            "icmpv6_raw": ["8602", 16, 2, 0, 1], "icmpv6": {})"))
                    .messages,
                ElementsAre(FieldsAre("ip", bytes{0x60, 0x01, 0x86, 0x02}, false)));
}

TEST(extracted_packets, hold_the_innermost_ip_packet_of_a_router_advertisement) {
    EXPECT_THAT(
        extract_messages(text_of(R"("ipv6_raw": [["6001", 0, 2, 0, 1], ["6002", 9, 2, 0, 1]],
            "ipv6": [{}, {}], "icmpv6_raw": ["8602", 16, 2, 0, 1], "icmpv6": {})"))
            .messages,
        ElementsAre(FieldsAre("ip", bytes{0x60, 0x02, 0x86, 0x02}, false)));
}

TEST(extracted_packets, hold_no_record_of_other_icmp) {
    for (const auto* layers :
         {R"("ipv6_raw": ["6001", 14, 2, 0, 1], "icmpv6_raw": ["8702", 16, 2, 0, 1])",
          R"("ipv6_raw": ["6001", 14, 2, 0, 1], "icmpv6_raw": ["", 16, 0, 0, 1])",
          R"("ipv6_raw": ["6001", 14, 2, 0, 1], "icmpv6_raw": [])",
          R"("ipv6_raw": [], "icmpv6_raw": ["8602", 16, 2, 0, 1])",
          R"("ipv6_raw": ["6001", 14, 2, 0, 1])", R"("icmpv6_raw": ["8602", 16, 2, 0, 1])"}) {
        EXPECT_THAT(extract_messages(text_of(layers)).messages, IsEmpty()) << layers;
    }
}

TEST(extracted_packets, tell_of_messages_that_were_not_printed) {
    const auto hides = [](const std::string& protocols) {
        return extract_messages(
                   text_of(R"("nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {})", protocols))
            .hides_messages;
    };
    EXPECT_FALSE(hides("eth:ip:udp:gsmtap:nas-eps"));
    EXPECT_FALSE(hides("eth:ip:udp:gsmtap:nas_eps"));
    EXPECT_FALSE(hides(""));
    EXPECT_TRUE(hides("eth:ip:sctp:s1ap:nas-eps:s1ap:nas-eps"));
    EXPECT_TRUE(hides("user_dlt:mac-lte:lte_rrc:nas-eps"));
}

TEST(extracted_packets, do_not_count_a_router_advertisement_as_a_message_that_was_printed) {
    EXPECT_TRUE(extract_messages(text_of(R"("ipv6_raw": ["60", 14, 1, 0, 1],
                                            "icmpv6_raw": ["86", 16, 1, 0, 1])",
                                         "ip:sctp:s1ap:nas-eps:ipv6:icmpv6"))
                    .hides_messages);
}

TEST(extracted_packets, tell_of_encrypted_signalling) {
    EXPECT_TRUE(extract_messages(text_of("", "user_dlt:mac-lte:rlc-lte:pdcp-lte")).is_encrypted);
    EXPECT_FALSE(extract_messages(text_of("", "user_dlt:mac-lte:rlc-lte")).is_encrypted);
    EXPECT_FALSE(extract_messages(text_of(R"("nas-eps_raw": ["01", 0, 1, 0, 1], "nas-eps": {})",
                                          "mac-lte:rlc-lte:pdcp-lte:nas-eps"))
                     .is_encrypted);
}

TEST(extracted_packets, tell_their_user_link_type) {
    const auto link_type_of = [](const std::string& encapsulation) {
        return extract_messages(R"([{"_source": {"layers": {"frame": {"frame.encap_type": ")" +
                                encapsulation + "\"}}}}]")
            .user_link_type;
    };
    EXPECT_THAT(link_type_of("45"), Optional(147));
    EXPECT_THAT(link_type_of("60"), Optional(162));
    EXPECT_EQ(link_type_of("44"), std::nullopt);
    EXPECT_EQ(link_type_of("61"), std::nullopt);
}

TEST(extracted_packets, are_not_made_of_other_texts) {
    for (const auto* text :
         {"", "[", "tshark: failed", "[]", "{}", "[1]", "[{}]", R"([{"_source": {}}])",
          R"([{"_source": {"layers": {}}}])", R"([{"_source": {"layers": []}}])",
          R"([{"_source": {"layers": "frame"}}])"}) {
        EXPECT_THROW(extract_messages(text), ANALYSIS::not_a_packet) << text;
    }
}

TEST(extracted_packets, may_have_a_frame_of_another_form) {
    for (const auto* frame :
         {"null", "1", R"("text")", "[]", "{}", R"({"frame.number": 7, "frame.protocols": []})"}) {
        const auto packet =
            extract_messages(R"([{"_source": {"layers": {"frame": )" + std::string(frame) + "}}}]");
        EXPECT_EQ(packet.number, 0U) << frame;
        EXPECT_EQ(packet.timestamp, 0U) << frame;
    }
}

TEST(extracted_packets, may_be_nested_without_bounds) {
    std::string tree;
    std::string end;
    for (int level = 0; level < 5'000; ++level) {
        tree += R"({"x": [)";
        end += "]}";
    }
    EXPECT_THAT(extract_messages(text_of(R"("s1ap": )" + tree + end)).messages, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
