// NAS messages made by hand from 3GPP TS 24.301 and 24.008, dissected by the real tshark; the
// expected values were worked out from the clauses named in the tests.
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/settings/settings_of.h"
#include "tests/replay/settings/dissection.h"
#include "tests/support/bytes.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;
using lines = std::vector<std::string>;

/// The number in two hexadecimal digits.
std::string octet(std::size_t number) {
    return hex_of(std::string(1, static_cast<char>(number)));
}

/// With the length in front, in one octet.
std::string lv(const std::string& hex) {
    return octet(hex.size() / 2) + hex;
}

/// Likewise in two octets.
std::string lve(const std::string& hex) {
    return octet(hex.size() / 512) + octet(hex.size() / 2 % 256) + hex;
}

/// 24.301, 8.2.4: the optional elements behind an ESM message.
std::string attach_request(const std::string& elements, const std::string& esm = "0201d011",
                           const std::string& capability = "f0f0") {
    return "0741020bf662f2208003c8c2e65e9a" + lv(capability) + lve(esm) + elements;
}

/// 24.301, 8.3.6: EPS QoS, an APN "test", an IPv4 address and the optional elements.
std::string activate_default(const std::string& elements, const std::string& pdn = "010a000001") {
    return "5201c1" + lv("09") + lv("0474657374") + lv(pdn) + elements;
}

/// 24.301, 8.2.1, with the operator's octets and T3412.
std::string attach_accept(const std::string& elements,
                          const std::string& esm = activate_default(""),
                          const std::string& plmn = "62f220", const std::string& t3412 = "e0") {
    return "074201" + t3412 + lv("00" + plmn + "4e21") + lve(esm) + elements;
}

std::string tracking_area_update_request(const std::string& elements) {
    return "0748000bf662f2208003c8c2e65e9a" + elements;
}

class nas_settings_tests : public testing::Test {
  protected:
    lines settings(const std::string& hex, radio_access access = radio_access::unknown) {
        return lines_of(settings_of(tshark_.packet("nas-eps", hex), access));
    }

    /// Those whose lines begin with the text.
    lines settings(const std::string& hex, std::string_view beginning,
                   radio_access access = radio_access::unknown) {
        return lines_of(settings_of(tshark_.packet("nas-eps", hex), access), beginning);
    }

  private:
    dissector tshark_;
};

/// An octet and what it stands for.
using octet_values = std::vector<std::pair<std::string, std::string>>;

/// 24.008, 10.5.7.3: 2 s, 60 s, 360 s; the next four units count as minutes.
const octet_values gprs_timer_octets{{"00", "0 s"},        {"05", "10 s"},   {"1f", "62 s"},
                                     {"21", "60 s"},       {"3f", "1860 s"}, {"49", "3240 s"},
                                     {"5f", "11160 s"},    {"61", "60 s"},   {"9f", "1860 s"},
                                     {"a2", "120 s"},      {"df", "1860 s"}, {"e0", "deactivated"},
                                     {"ff", "deactivated"}};

/// 24.008, 10.5.7.4a: 10 minutes, 1 h, 10 h, 2 s, 30 s, 1 minute, 320 h.
const octet_values gprs_timer_3_octets{
    {"00", "0 s"},        {"06", "3600 s"},    {"1f", "18600 s"},    {"3f", "111600 s"},
    {"47", "252000 s"},   {"5f", "1116000 s"}, {"7f", "62 s"},       {"9f", "930 s"},
    {"bf", "1860 s"},     {"c1", "1152000 s"}, {"df", "35712000 s"}, {"e0", "deactivated"},
    {"ff", "deactivated"}};

TEST_F(nas_settings_tests, t3324_is_in_seconds_on_both_sides) {
    for (const auto& [hex, value] : gprs_timer_octets) {
        EXPECT_THAT(settings(attach_request("6a01" + hex), "requested T3324"),
                    ElementsAre("requested T3324: " + value));
        EXPECT_THAT(settings(attach_accept("6a01" + hex), "granted T3324"),
                    ElementsAre("granted T3324: " + value));
    }
}

TEST_F(nas_settings_tests, t3412_and_t3402_are_in_seconds) {
    for (const auto& [hex, value] : gprs_timer_octets) {
        EXPECT_THAT(
            settings(attach_accept("17" + hex, activate_default(""), "62f220", hex), "granted T34"),
            UnorderedElementsAre("granted T3412: " + value, "granted T3402: " + value));
    }
}

TEST_F(nas_settings_tests, t3412_extended_is_in_seconds_on_both_sides) {
    for (const auto& [hex, value] : gprs_timer_3_octets) {
        EXPECT_THAT(settings(attach_request("5e01" + hex), "requested T3412"),
                    ElementsAre("requested T3412 extended: " + value));
        EXPECT_THAT(settings(attach_accept("5e01" + hex), "granted T3412 extended"),
                    ElementsAre("granted T3412 extended: " + value));
    }
}

/// 24.008, 10.5.5.32, table 10.5.5.32: E-UTRAN cycles as WB-S1 mode reads them; the last two count
/// as 1101 there.
constexpr std::array<const char*, 16> wb_s1_cycles{
    "5.12 s",    "10.24 s",   "20.48 s",   "40.96 s",  "61.44 s",  "81.92 s",
    "102.4 s",   "122.88 s",  "143.36 s",  "163.84 s", "327.68 s", "655.36 s",
    "1310.72 s", "2621.44 s", "2621.44 s", "2621.44 s"};
/// As NB-S1 mode reads them: 0000 and 0001 as if there were no eDRX, 0100 and 0110 to 1000 as 0010.
constexpr std::array<const char*, 16> nb_s1_cycles{
    "none",      "none",      "20.48 s",   "40.96 s",   "20.48 s",  "81.92 s",
    "20.48 s",   "20.48 s",   "20.48 s",   "163.84 s",  "327.68 s", "655.36 s",
    "1310.72 s", "2621.44 s", "5242.88 s", "10485.76 s"};
/// Paging time windows: 1.28 s and 2.56 s a step.
constexpr std::array<const char*, 16> wb_s1_windows{
    "1.28 s",  "2.56 s", "3.84 s",  "5.12 s",  "6.4 s",   "7.68 s",  "8.96 s", "10.24 s",
    "11.52 s", "12.8 s", "14.08 s", "15.36 s", "16.64 s", "17.92 s", "19.2 s", "20.48 s"};
constexpr std::array<const char*, 16> nb_s1_windows{
    "2.56 s",  "5.12 s", "7.68 s",  "10.24 s", "12.8 s",  "15.36 s", "17.92 s", "20.48 s",
    "23.04 s", "25.6 s", "28.16 s", "30.72 s", "33.28 s", "35.84 s", "38.4 s",  "40.96 s"};

TEST_F(nas_settings_tests, edrx_in_wb_s1_mode_has_sixteen_cycles_and_windows) {
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_THAT(settings(attach_request("6e01" + octet(i << 4U | i)), "requested ",
                             radio_access::wb_s1),
                    IsSupersetOf(lines{
                        std::string("requested eDRX cycle: ") + wb_s1_cycles.at(i),
                        std::string("requested paging time window: ") + wb_s1_windows.at(i)}));
    }
}

TEST_F(nas_settings_tests, edrx_in_nb_s1_mode_has_sixteen_cycles) {
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_THAT(settings(attach_accept("6e01" + octet(i)), "granted eDRX", radio_access::nb_s1),
                    ElementsAre(std::string("granted eDRX cycle: ") + nb_s1_cycles.at(i)));
    }
}

TEST_F(nas_settings_tests, edrx_in_nb_s1_mode_has_sixteen_windows) {
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_THAT(
            settings(tracking_area_update_request("6e01" + octet(i << 4U | 2U)), "requested paging",
                     radio_access::nb_s1),
            ElementsAre(std::string("requested paging time window: ") + nb_s1_windows.at(i)));
    }
}

TEST_F(nas_settings_tests, edrx_that_nb_s1_mode_ignores_has_no_window) {
    EXPECT_THAT(settings(attach_request("6e0130"), "requested paging", radio_access::nb_s1),
                IsEmpty());
}

TEST_F(nas_settings_tests, edrx_of_an_unknown_access_is_given_in_both_modes_and_marked) {
    EXPECT_THAT(settings("0749006e01f9", "granted "),
                UnorderedElementsAre("granted eDRX cycle in WB-S1 mode: 163.84 s ?",
                                     "granted paging time window in WB-S1 mode: 20.48 s ?",
                                     "granted eDRX cycle in NB-S1 mode: 163.84 s ?",
                                     "granted paging time window in NB-S1 mode: 40.96 s ?"));
}

// 24.008, 10.5.5.6: the cycle stands in the upper half of the second octet; 6 to 9 are 32 to 256
// radio frames of 10 ms, all others are to be read as "not specified".
TEST_F(nas_settings_tests, requested_drx_cycle_is_in_seconds) {
    const octet_values cycles{
        {"60", "0.32 s"}, {"70", "0.64 s"}, {"80", "1.28 s"}, {"90", "2.56 s"}};
    for (const auto& [hex, value] : cycles) {
        EXPECT_THAT(settings(attach_request("5c0a" + hex), "requested UE-specific"),
                    ElementsAre("requested UE-specific DRX cycle: " + value));
    }
}

TEST_F(nas_settings_tests, requested_drx_cycle_of_any_other_value_is_not_specified) {
    for (std::size_t value = 0; value < 16; ++value) {
        if (value < 6 || value > 9) {
            EXPECT_THAT(
                settings(attach_request("5c0a" + octet(value << 4U)), "requested UE-specific"),
                ElementsAre("requested UE-specific DRX cycle: not specified"));
        }
    }
}

// 24.301, 9.9.3.63: 1 to 6 are 32 to 1024 radio frames.
TEST_F(nas_settings_tests, drx_cycle_in_nb_s1_mode_is_in_seconds_on_both_sides) {
    const octet_values cycles{{"00", "not specified"}, {"01", "0.32 s"}, {"02", "0.64 s"},
                              {"03", "1.28 s"},        {"04", "2.56 s"}, {"05", "5.12 s"},
                              {"06", "10.24 s"},       {"07", "7 ?"},    {"0f", "15 ?"}};
    for (const auto& [hex, value] : cycles) {
        EXPECT_THAT(settings(attach_request("3601" + hex), "requested UE-specific"),
                    ElementsAre("requested UE-specific DRX cycle in NB-S1 mode: " + value));
        EXPECT_THAT(settings(attach_accept("3601" + hex), "granted UE-specific"),
                    ElementsAre("granted UE-specific DRX cycle in NB-S1 mode: " + value));
    }
}

// 24.301, 9.9.3.34: octet 8 has UP CIoT in bit 4 and CP CIoT in bit 3. 9.9.3.0B: PNB-CIoT in bits 4
// and 3 of the additional update type.
TEST_F(nas_settings_tests, ciot_optimisations_are_requested) {
    EXPECT_THAT(settings(attach_request("f4", "0201d011", "f0f000000004")),
                IsSupersetOf(lines{"requested control-plane CIoT optimisation: yes",
                                   "requested user-plane CIoT optimisation: no",
                                   "requested preferred CIoT optimisation: control plane"}));
    EXPECT_THAT(settings(attach_request("f8", "0201d011", "f0f000000008")),
                IsSupersetOf(lines{"requested control-plane CIoT optimisation: no",
                                   "requested user-plane CIoT optimisation: yes",
                                   "requested preferred CIoT optimisation: user plane"}));
    EXPECT_THAT(settings(attach_request("f0"), "requested preferred"),
                ElementsAre("requested preferred CIoT optimisation: no preference"));
    EXPECT_THAT(settings(attach_request("fc"), "requested preferred"),
                ElementsAre("requested preferred CIoT optimisation: 3 ?"));
}

// 24.301, 9.9.3.12A: CP CIoT in bit 8 of the first octet, UP CIoT in bit 1 of the second.
TEST_F(nas_settings_tests, ciot_optimisations_are_granted) {
    EXPECT_THAT(settings(attach_accept("64028000")),
                IsSupersetOf(lines{"granted control-plane CIoT optimisation: yes",
                                   "granted user-plane CIoT optimisation: no"}));
    EXPECT_THAT(settings("07490064020001"),
                UnorderedElementsAre("granted control-plane CIoT optimisation: no",
                                     "granted user-plane CIoT optimisation: yes"));
    EXPECT_THAT(settings(attach_accept("", activate_default("91")), "granted control plane only"),
                ElementsAre("granted control plane only: yes"));
}

// 24.301, 9.9.4.9 and 9.9.4.10.
TEST_F(nas_settings_tests, pdn_type_is_named_on_both_sides) {
    const octet_values types{{"1", "IPv4"},   {"2", "IPv6"},     {"3", "IPv4v6"}, {"4", "4 ?"},
                             {"5", "non-IP"}, {"6", "Ethernet"}, {"7", "7 ?"}};
    for (const auto& [digit, value] : types) {
        EXPECT_THAT(settings(attach_request("", "0201d0" + digit + "1"), "requested PDN type"),
                    ElementsAre("requested PDN type: " + value));
    }
    EXPECT_THAT(settings(attach_accept("", activate_default("", "05"))),
                IsSupersetOf(lines{"granted PDN type: non-IP"}));
}

TEST_F(nas_settings_tests, pdn_has_its_apn_and_addresses) {
    EXPECT_THAT(settings(attach_accept("", activate_default("", "0300000000000000010a2d0417"))),
                IsSupersetOf(lines{"granted APN: test", "granted PDN type: IPv4v6",
                                   "granted PDN address: 10.45.4.23",
                                   "granted PDN interface identifier: 00:00:00:00:00:00:00:01"}));
    EXPECT_THAT(settings(attach_request("", "0201d01128050474657374"), "requested APN"),
                ElementsAre("requested APN: test"));
}

// 24.301, 9.9.4.2: 1 to 63 kbit/s; 64 to 568 by 8; 576 to 8640 by 64; 255 is 0. Extended: 8600 +
// 100 a step to 16 Mbit/s; 16 + 1 to 128; 128 + 2 to 256. Extended-2 adds 256 Mbit/s a step, to
// 65280.
TEST_F(nas_settings_tests, apn_ambr_has_three_ranges_and_both_extensions) {
    const octet_values elements{
        {"5e020101", "1 kbit/s"},
        {"5e023f3f", "63 kbit/s"},
        {"5e024040", "64 kbit/s"},
        {"5e027f7f", "568 kbit/s"},
        {"5e028080", "576 kbit/s"},
        {"5e02fefe", "8640 kbit/s"},
        {"5e02ffff", "0 kbit/s"},
        {"5e020000", "0 0 0 ?"},
        {"5e04fefe0000", "8640 kbit/s"},
        {"5e04fefe0101", "8700 kbit/s"},
        {"5e04fefe4a4a", "16000 kbit/s"},
        {"5e04fefe4b4b", "17000 kbit/s"},
        {"5e04fefebaba", "128000 kbit/s"},
        {"5e04fefebbbb", "130000 kbit/s"},
        {"5e04fefefafa", "256000 kbit/s"},
        {"5e04fefefbfb", "254 251 0 ?"},
        {"5e06fefefafa0101", "512000 kbit/s"},
        {"5e06fefe1c1c0000", "11400 kbit/s"},
        {"5e06fefedddd1010", "4294000 kbit/s"},
        {"5e06fefefafafefe", "65280000 kbit/s"},
        {"5e06fefefafaffff", "254 250 255 ?"},
    };
    for (const auto& [hex, value] : elements) {
        EXPECT_THAT(settings(attach_accept("", activate_default(hex)), "granted APN-AMBR"),
                    ElementsAre("granted APN-AMBR downlink: " + value,
                                "granted APN-AMBR uplink: " + value));
    }
}

TEST_F(nas_settings_tests, apn_ambr_tells_the_directions_apart) {
    EXPECT_THAT(settings(attach_accept("", activate_default("5e05fe40fa0001")), "granted APN-AMBR"),
                ElementsAre("granted APN-AMBR downlink: 512000 kbit/s",
                            "granted APN-AMBR uplink: 64 kbit/s"));
}

// 24.301, 9.9.4.29: units from 4 Mbit/s (3) by 4 to 256 Mbit/s (6), 1 Gbit/s (7), ..., 256 Pbit/s
// (21), which those above count as; 0 to 2 are not used.
TEST_F(nas_settings_tests, extended_apn_ambr_is_in_megabits) {
    const octet_values elements{
        {"030001", "4 Mbit/s"},
        {"04ffff", "1048560 Mbit/s"},
        {"060100", "65536 Mbit/s"},
        {"070042", "66000 Mbit/s"},
        {"0b0001", "256000 Mbit/s"},
        {"0c0001", "1000000 Mbit/s"},
        {"110001", "1000000000 Mbit/s"},
        {"15ffff", "16776960000000000 Mbit/s"},
        {"ff0001", "256000000000 Mbit/s"},
        {"020064", "2 100 ?"},
        {"000000", "0 0 ?"},
    };
    for (const auto& [hex, value] : elements) {
        std::string element = "5f06";
        element.append(hex).append(hex);
        EXPECT_THAT(settings(attach_accept("", activate_default(element)), "granted extended"),
                    ElementsAre("granted extended APN-AMBR downlink: " + value,
                                "granted extended APN-AMBR uplink: " + value));
    }
}

// 24.301, 9.9.4.28; 23.401, 4.7.7.2 has 10 as the least.
TEST_F(nas_settings_tests, serving_plmn_rate_control_is_a_count_of_messages) {
    const octet_values rates{{"000a", "10 messages in 6 minutes"},
                             {"ffff", "65535 messages in 6 minutes"},
                             {"0009", "9 ?"}};
    for (const auto& [hex, value] : rates) {
        EXPECT_THAT(settings(attach_accept("", activate_default("6e02" + hex)), "granted serving"),
                    ElementsAre("granted serving PLMN rate control: " + value));
    }
}

// 24.008, 10.5.6.3: IPCP (8021) with both servers, and the containers 000d and 0003.
TEST_F(nas_settings_tests, dns_servers_of_all_options_are_there_once) {
    const std::string ipcp = "80211003010010810608080808830608080404";
    const std::string ipv4 = "000d0408080808000d0401010101";
    const std::string ipv6 = "00031020014860486000000000000000008888";
    EXPECT_THAT(settings(attach_accept("", activate_default("27" + lv("80" + ipcp + ipv4 + ipv6))),
                         "granted DNS"),
                UnorderedElementsAre("granted DNS server: 8.8.8.8", "granted DNS server: 8.8.4.4",
                                     "granted DNS server: 1.1.1.1",
                                     "granted DNS server: 2001:4860:4860::8888"));
    EXPECT_THAT(
        settings(attach_accept("", activate_default("7b" + lve("80" + ipcp))), "granted DNS"),
        UnorderedElementsAre("granted DNS server: 8.8.8.8", "granted DNS server: 8.8.4.4"));
}

// 24.301, 9.9.4.25.
TEST_F(nas_settings_tests, release_assistance_is_requested) {
    const octet_values indications{{"f0", "no information"},
                                   {"f1", "no more data"},
                                   {"f2", "a single downlink, no more uplink"},
                                   {"f3", "3 ?"}};
    for (const auto& [hex, value] : indications) {
        EXPECT_THAT(settings("074d0078" + lve("5200eb00026161" + hex)),
                    ElementsAre("requested release assistance: " + value));
    }
}

// 24.301, 9.9.3.7.
TEST_F(nas_settings_tests, detach_tells_its_type_by_who_asks) {
    const std::string guti = "0bf662f2208003c8c2e65e9a";
    EXPECT_THAT(settings("074509" + guti),
                UnorderedElementsAre("requested switch off: yes", "requested detach type: EPS"));
    EXPECT_THAT(settings("074503" + guti),
                UnorderedElementsAre("requested switch off: no",
                                     "requested detach type: combined EPS/IMSI"));
    EXPECT_THAT(settings("074507" + guti, "requested detach"),
                ElementsAre("requested detach type: 7 ?"));
    EXPECT_THAT(settings("0745025302"),
                UnorderedElementsAre("granted detach type: re-attach not required",
                                     "granted EMM cause: 2 IMSI unknown in HSS"));
}

TEST_F(nas_settings_tests, rejects_tell_their_cause_and_back_off) {
    EXPECT_THAT(settings("07440f5f0121160142"),
                UnorderedElementsAre("granted EMM cause: 15 No suitable cells in tracking area",
                                     "granted T3346: 60 s", "granted T3402: 720 s"));
    EXPECT_THAT(settings("074b0c5f01e0"),
                UnorderedElementsAre("granted EMM cause: 12 Tracking area not allowed",
                                     "granted T3346: deactivated"));
    EXPECT_THAT(settings("074e165f0121"),
                UnorderedElementsAre("granted EMM cause: 22 Congestion", "granted T3346: 60 s"));
    EXPECT_THAT(settings("0744fe"), ElementsAre("granted EMM cause: 254 ?"));
    EXPECT_THAT(settings("07441378" + lve("0201d11b")),
                UnorderedElementsAre("granted EMM cause: 19 ESM failure",
                                     "granted ESM cause: 27 Missing or unknown APN"));
    EXPECT_THAT(settings("07441378" + lve("0201d107")),
                IsSupersetOf(lines{"granted ESM cause: 7 ?"}));
}

TEST_F(nas_settings_tests, an_accept_gives_its_settings_whatever_the_operator) {
    const std::vector<std::pair<std::string, std::string>> operators{
        {"00f110", "001/01 Test network"},
        {"99f907", "999/70"},
        {"09f107", "901/70 Clementvale Baltic OÜ"},
        {"62f251", "262/15 Airdata, Germany"},
        {"07f299", "702/99 Speednet Communications Limited, Belize"},
        {"72f077", "270/77 Proximus Luxembourg S.A., Belgium; Tango SA, Luxembourg"},
        {"130014",
         "310/410 AT&T Mobility, United States of America; Liberty, United States Virgin "
         "Islands (United States of America)"},
        {"130451", "314/150 Reserved for Public Safety, United States of America"},
        {"330450", "334/050 AT&T Mexico, Mexico"},
        {"07f410", "704/01 Telecomunicaciones de Guatemala, S.A., Guatemala"},
    };
    for (const auto& [plmn, name] : operators) {
        EXPECT_THAT(settings(attach_accept("5e01066a0105", activate_default(""), plmn)),
                    IsSupersetOf(lines{"granted operator: " + name, "granted T3324: 10 s",
                                       "granted T3412 extended: 3600 s", "granted APN: test",
                                       "granted tracking area code: 20001"}));
    }
}

// 24.301, 9.9.3.12: the GUTI's operator, where there is no tracking area.
TEST_F(nas_settings_tests, a_guti_names_the_operator) {
    EXPECT_THAT(settings("074900500bf662f2208003c8c2e65e9a"),
                ElementsAre("granted operator: 262/02 Vodafone D2 GmbH, Germany"));
}

/// 24.301, 8.2.21 (security protected NAS message): integrity protected, without a real code.
std::string integrity_protected(const std::string& message) {
    return "170000000001" + message;
}

TEST_F(nas_settings_tests, session_messages_of_their_own_are_read) {
    EXPECT_THAT(settings(integrity_protected("0201d0222805047465737427058080210000")),
                IsSupersetOf(lines{"requested PDN type: IPv6", "requested APN: test"}));
    EXPECT_THAT(settings(integrity_protected("0201da28050474657374")),
                ElementsAre("requested APN: test"));
    EXPECT_THAT(settings(integrity_protected("5201c31f")),
                ElementsAre("requested ESM cause: 31 Request rejected, unspecified"));
    EXPECT_THAT(settings(integrity_protected("5201c95e020101")),
                UnorderedElementsAre("granted APN-AMBR downlink: 1 kbit/s",
                                     "granted APN-AMBR uplink: 1 kbit/s"));
    EXPECT_THAT(settings(integrity_protected("5201cd24")),
                ElementsAre("granted ESM cause: 36 Regular deactivation"));
    EXPECT_THAT(settings(integrity_protected("0201d131")),
                ElementsAre("granted ESM cause: 49 Last PDN disconnection not allowed"));
    EXPECT_THAT(settings(integrity_protected("0201d331")),
                ElementsAre("granted ESM cause: 49 Last PDN disconnection not allowed"));
}

TEST_F(nas_settings_tests, other_messages_have_none) {
    EXPECT_THAT(settings("074300035200c2"), IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
