// Packets of every shape, and the same records as several versions of tshark print them.
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/output_processing.h"
#include "replay/settings/settings_of.h"
#include "tests/replay/settings/dissection.h"
#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;
using lines = std::vector<std::string>;

/// A record of a sample as a version of tshark printed it.
json recorded(const std::string& version, const std::string& record) {
    const auto file = data_file("tshark-json/" + version + '/' + record + ".json");
    return json::parse(ANALYSIS::number_repeated_names(read_file(file))).at(0);
}

class each_version_of_tshark : public testing::TestWithParam<const char*> {
  protected:
    static lines settings_of_record(const char* record) {
        return lines_of(settings_of(recorded(GetParam(), record)));
    }
};

INSTANTIATE_TEST_SUITE_P(versions, each_version_of_tshark,
                         testing::Values("3.4.10", "4.0.17", "4.4.18", "4.6.9"));

TEST_P(each_version_of_tshark, gives_an_attach_request) {
    EXPECT_THAT(settings_of_record("ltem_attach_psm/05"),
                UnorderedElementsAre("requested T3324: 60 s", "requested T3412 extended: 3600 s",
                                     "requested PDN type: IPv4"));
    EXPECT_THAT(settings_of_record("nbiot_attach/05"),
                UnorderedElementsAre("requested T3324: 120 s", "requested T3412 extended: 36000 s",
                                     "requested PDN type: IPv4"));
}

const lines ltem_drx{"configured connected-mode DRX: set up", "configured long DRX cycle: 320 ms",
                     "configured on-duration timer: 10 PDCCH subframes",
                     "configured DRX inactivity timer: 100 PDCCH subframes",
                     "configured DRX retransmission timer: 8 PDCCH subframes"};

const lines ltem_accept{"granted T3324: 10 s",
                        "granted T3402: 720 s",
                        "granted T3412: 3240 s",
                        "granted T3412 extended: 252000 s",
                        "granted control-plane CIoT optimisation: no",
                        "granted APN: iot.example.mnc002.mcc262.gprs",
                        "granted PDN type: IPv4",
                        "granted PDN address: 10.45.4.23",
                        "granted APN-AMBR downlink: 568 kbit/s",
                        "granted APN-AMBR uplink: 576 kbit/s",
                        "granted DNS server: 8.8.8.8",
                        "granted DNS server: 8.8.4.4",
                        "granted operator: 262/02 Vodafone D2 GmbH, Germany",
                        "granted tracking area code: 20001"};

TEST_P(each_version_of_tshark, gives_an_attach_accept) {
    EXPECT_THAT(settings_of_record("ltem_attach_psm/13"), UnorderedElementsAreArray(ltem_accept));
}

TEST_P(each_version_of_tshark, gives_an_accept_within_a_reconfiguration) {
    lines both = ltem_accept;
    both.insert(both.end(), ltem_drx.begin(), ltem_drx.end());
    EXPECT_THAT(settings_of_record("ltem_attach_psm/12"), UnorderedElementsAreArray(both));
}

TEST_P(each_version_of_tshark, gives_rejects) {
    EXPECT_THAT(settings_of_record("nbiot_attach/07"),
                UnorderedElementsAre("granted EMM cause: 19 ESM failure",
                                     "granted ESM cause: 27 Missing or unknown APN"));
}

TEST_P(each_version_of_tshark, gives_system_information) {
    EXPECT_THAT(settings_of_record("ltem_attach_psm/16"),
                UnorderedElementsAre("broadcast default paging cycle: 2.56 s", "broadcast nB: 1 T",
                                     "broadcast MPDCCH repetitions for paging: 32",
                                     "broadcast T300: 1000 ms", "broadcast T310: 1000 ms",
                                     "broadcast N310: 10"));
    EXPECT_THAT(settings_of_record("nbiot_attach/01"),
                UnorderedElementsAre("broadcast default paging cycle: 2.56 s", "broadcast nB: 1 T",
                                     "broadcast NPDCCH repetitions for paging: 64",
                                     "broadcast T300: 10000 ms", "broadcast T310: 8000 ms",
                                     "broadcast N310: 20"));
}

TEST_P(each_version_of_tshark, gives_connection_setups_and_releases) {
    EXPECT_THAT(settings_of_record("ltem_attach_psm/03"), UnorderedElementsAreArray(ltem_drx));
    EXPECT_THAT(settings_of_record("nbiot_attach/03"),
                UnorderedElementsAre("configured connected-mode DRX: set up",
                                     "configured long DRX cycle: 2048 ms",
                                     "configured on-duration timer: 8 PDCCH periods",
                                     "configured DRX inactivity timer: 32 PDCCH periods",
                                     "configured DRX retransmission timer: 16 PDCCH periods",
                                     "configured DRX UL retransmission timer: 16 PDCCH periods"));
    EXPECT_THAT(settings_of_record("ltem_attach_psm/17"),
                ElementsAre("configured release cause: other"));
    EXPECT_THAT(settings_of_record("nbiot_attach/08"),
                ElementsAre("configured release cause: other"));
}

// A DL information transfer of NB-IoT with a tracking area update accept: eDRX 9, window 3.
TEST(radio_access_of_a_packet, comes_before_what_is_known_from_others) {
    dissector tshark;
    const json packet = tshark.packet("lte_rrc.dl_dcch.nb", "000181d2401b804e40");
    EXPECT_EQ(access_of(packet), radio_access::nb_s1);
    EXPECT_THAT(lines_of(settings_of(packet, radio_access::wb_s1)),
                ElementsAre("granted eDRX cycle: 163.84 s", "granted paging time window: 10.24 s"));
}

TEST(radio_access_of_a_packet, is_unknown_without_rrc) {
    EXPECT_EQ(access_of(recorded("4.0.17", "ltem_attach_psm/13")), radio_access::unknown);
    EXPECT_EQ(access_of(json()), radio_access::unknown);
    EXPECT_EQ(access_of(packet_with("lte_rrc", "[]")), radio_access::unknown);
    EXPECT_EQ(access_of(packet_with("lte_rrc", R"({"lte_rrc": "?"})")), radio_access::unknown);
}

TEST(packets_without_settings, give_none) {
    for (const char* text :
         {"null", "1", "\"\"", "[]", "{}", R"({"_source": 1})", R"({"_source": {"layers": []}})",
          R"({"_source": {"layers": {"lte_rrc": 1, "nas-eps": "?"}}})"}) {
        EXPECT_THAT(settings_of(json::parse(text)), IsEmpty()) << text;
    }
}

/// An attach accept with one more member.
lines accept_with(const std::string& member) {
    return lines_of(settings_of(
        packet_with("nas-eps", R"({"nas_eps.nas_msg_emm_type": "0x42", )" + member + '}')));
}

TEST(values_that_the_tables_do_not_know, are_raw_and_marked) {
    EXPECT_THAT(accept_with(R"("nas_eps.emm.cp_ciot": "2")"),
                ElementsAre("granted control-plane CIoT optimisation: 2 ?"));
    EXPECT_THAT(accept_with(R"("nas_eps.emm.cp_ciot": "True")"),
                ElementsAre("granted control-plane CIoT optimisation: True ?"));
    EXPECT_THAT(accept_with(R"("nas_eps.emm.tai_tac": "99999999999999999999")"),
                ElementsAre("granted tracking area code: 99999999999999999999 ?"));
    EXPECT_THAT(accept_with(R"("nas_eps.emm.tai_tac": "-1")"),
                ElementsAre("granted tracking area code: -1 ?"));
    EXPECT_THAT(accept_with(R"("GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
                    "gsm_a.gm.gmm.gprs_timer2_unit": "8", "gsm_a.gm.gmm.gprs_timer2_value": "1"}})"),
                ElementsAre("granted T3324: 8 1 ?"));
    EXPECT_THAT(accept_with(R"("GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": {
                    "gsm_a.gm.gmm.gprs_timer2_unit": "1", "gsm_a.gm.gmm.gprs_timer2_value": "32"}})"),
                ElementsAre("granted T3324: 1 32 ?"));
    EXPECT_THAT(accept_with(R"("e212.tai.mcc": "x", "e212.tai.mnc": "1000")"),
                ElementsAre("granted operator: 00x/1000"));
    EXPECT_THAT(accept_with(R"("e212.tai.mcc": "x", "e212.tai.mnc": "1")"),
                ElementsAre("granted operator: 00x/01"));
}

TEST(choices_of_setup_and_release, have_either_name_for_their_value) {
    for (const char* name :
         {"lte-rrc.setup", "lte-rrc.physicalConfigDedicated.eag_7.ce_Mode_r13.setup"}) {
        json packet = packet_with("lte_rrc", R"({"lte-rrc.DL_DCCH_Message_element": {
            "lte-rrc.rrcConnectionReconfiguration_element": {
                "lte-rrc.ce_Mode_r13": "1", "lte-rrc.ce_Mode_r13_tree": {}}}})");
        packet["_source"]["layers"]["lte_rrc"]["lte-rrc.DL_DCCH_Message_element"]
              ["lte-rrc.rrcConnectionReconfiguration_element"]["lte-rrc.ce_Mode_r13_tree"][name] =
                  "1";
        EXPECT_THAT(lines_of(settings_of(packet)), ElementsAre("configured CE mode: B"));
    }
}

TEST(fields_of_other_shapes, are_left_out) {
    for (const char* member :
         {R"("nas_eps.emm.cp_ciot": 1)", R"("nas_eps.emm.cp_ciot": {})",
          R"("GPRS Timer 2 - T3324 value": "1")", R"("GPRS Timer 2 - T3324 value": {})",
          R"("GPRS Timer 2 - T3324 value": {"gsm_a.gm.gmm.gprs_timer2_tree": [1]})",
          R"("gsm_a.gm.gmm.edrx_value": "16")", R"("gsm_a.gm.gmm.edrx_value": null)",
          R"("nas_eps.esm.apn_ambr_dl": "256")", R"("nas_eps.esm.ext_apn_ambr_dl": "1")",
          R"("e212.tai.mcc": "262")"}) {
        EXPECT_THAT(accept_with(member), IsEmpty()) << member;
    }
}

/// A switched-off detach in so many objects.
json nested(int levels) {
    json tree = {{"nas_eps.nas_msg_emm_type", "0x45"}, {"nas_eps.emm.switch_off", "1"}};
    for (int i = 0; i < levels; ++i) {
        json outer;
        outer["a"] = std::move(tree);
        tree = std::move(outer);
    }
    return {{"_source", {{"layers", {{"nas-eps", std::move(tree)}}}}}};
}

TEST(deep_packets, are_read_to_a_thousand_levels) {
    EXPECT_THAT(lines_of(settings_of(nested(999))), ElementsAre("requested switch off: yes"));
    EXPECT_THAT(settings_of(nested(1'000)), IsEmpty());
    EXPECT_THAT(settings_of(nested(10'000)), IsEmpty());
}

/// Puts another value in the place of some members.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the packet
void distort(json& tree, std::mt19937& random) {
    static const std::vector<json> strangers{nullptr,
                                             true,
                                             -1,
                                             1e300,
                                             "",
                                             "0x",
                                             "-",
                                             "18446744073709551616",
                                             "\xc3\xbc",
                                             json::array(),
                                             json::object(),
                                             json::array({"1", json::object()})};
    for (auto& member : tree) {
        if (random() % 20 == 0) {
            member = strangers.at(random() % strangers.size());
        } else if (member.is_structured()) {
            distort(member, random);
        }
    }
}

TEST(distorted_packets, are_read_without_an_exception) {
    std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same packets each time
    for (const char* record :
         {"ltem_attach_psm/12", "ltem_attach_psm/13", "nbiot_attach/01", "nbiot_attach/03"}) {
        const json packet = recorded("4.6.9", record);
        for (int i = 0; i < 500; ++i) {
            json distorted = packet;
            distort(distorted, random);
            EXPECT_NO_THROW(static_cast<void>(settings_of(distorted))) << distorted.dump();
        }
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
