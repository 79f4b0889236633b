/// What modem and network agree on in NAS messages: 3GPP TS 24.301 and what it takes from 24.008.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "replay/settings/table_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// The messages that carry settings, by their types (24.301, 9.8), and whose they are.
struct settings_message {
    std::uint8_t type;
    places where;
};

/// EPS mobility management. A detach request (0x45) is either's; see `settings_of`.
inline constexpr auto emm_settings_messages = std::to_array<settings_message>({
    {0x41, in_nas_request},  // attach request
    {0x42, in_nas_answer},   // attach accept
    {0x44, in_nas_answer},   // attach reject
    {0x45, in_nas_request},  // detach request
    {0x48, in_nas_request},  // tracking area update request
    {0x49, in_nas_answer},   // tracking area update accept
    {0x4b, in_nas_answer},   // tracking area update reject
    {0x4d, in_nas_request},  // control plane service request
    {0x4e, in_nas_answer},   // service reject
});

/// EPS session management.
inline constexpr auto esm_settings_messages = std::to_array<settings_message>({
    {0xc1, in_nas_answer},   // activate default EPS bearer context request
    {0xc3, in_nas_request},  // activate default EPS bearer context reject
    {0xc9, in_nas_answer},   // modify EPS bearer context request
    {0xcd, in_nas_answer},   // deactivate EPS bearer context request
    {0xd0, in_nas_request},  // PDN connectivity request
    {0xd1, in_nas_answer},   // PDN connectivity reject
    {0xd3, in_nas_answer},   // PDN disconnect reject
    {0xda, in_nas_request},  // ESM information response
    {0xeb, in_nas_request},  // ESM data transport; only a modem's has an indication
});

/// 24.301, 9.9.3.0B (additional update type): preferred CIoT network behaviour.
inline constexpr auto preferred_optimisations =
    std::to_array<std::string_view>({"no preference", "control plane", "user plane"});
/// 24.008, 10.5.5.6 (DRX parameter): DRX value for S1 mode, T of 32 to 256 radio frames, in s. All
/// other values are to be read as not specified.
inline constexpr auto drx_values = std::to_array<std::string_view>(
    {"not specified", "not specified", "not specified", "not specified", "not specified",
     "not specified", "0.32", "0.64", "1.28", "2.56", "not specified", "not specified",
     "not specified", "not specified", "not specified", "not specified"});
/// 24.301, 9.9.3.63 (NB-S1 DRX parameter): T of 32 to 1024 radio frames, in s.
inline constexpr auto nb_drx_values = std::to_array<std::string_view>(
    {"not specified", "0.32", "0.64", "1.28", "2.56", "5.12", "10.24"});
/// 24.301, 9.9.4.10 (PDN type).
inline constexpr auto pdn_types =
    std::to_array<std::string_view>({"", "IPv4", "IPv6", "IPv4v6", "", "non-IP", "Ethernet"});
/// 24.301, 9.9.3.7 (detach type), from the modem and from the network.
inline constexpr auto detach_types =
    std::to_array<std::string_view>({"", "EPS", "IMSI", "combined EPS/IMSI"});
inline constexpr auto network_detach_types =
    std::to_array<std::string_view>({"", "re-attach required", "re-attach not required", "IMSI"});
/// 24.301, 9.9.4.25 (release assistance indication): downlink data expected.
inline constexpr auto release_assistance = std::to_array<std::string_view>(
    {"no information", "no more data", "a single downlink, no more uplink"});

inline constexpr auto nas_settings = std::to_array<table_row>({
    // Power saving. A timer's field is the label of its element, which alone tells them apart.
    {"GPRS Timer 2 - T3324 value", in_nas, "T3324", "s", "24.301, 9.9.3.16A; 24.008, 10.5.7.4",
     reading::gprs_timer_2},
    {"GPRS Timer 3 - T3412 extended value", in_nas, "T3412 extended", "s",
     "24.301, 9.9.3.16B; 24.008, 10.5.7.4a", reading::gprs_timer_3},
    {"GPRS Timer - T3412 value", in_nas_answer, "T3412", "s", "24.301, 9.9.3.16; 24.008, 10.5.7.3",
     reading::gprs_timer},
    {"GPRS Timer - T3402 value", in_nas_answer, "T3402", "s", "24.301, 9.9.3.16; 24.008, 10.5.7.3",
     reading::gprs_timer},
    {"GPRS Timer 2 - T3402 value", in_nas_answer, "T3402", "s",
     "24.301, 9.9.3.16A; 24.008, 10.5.7.4", reading::gprs_timer_2},
    {"GPRS Timer 2 - T3346 value", in_nas_answer, "T3346", "s",
     "24.301, 9.9.3.16A; 24.008, 10.5.7.4", reading::gprs_timer_2},
    {"gsm_a.gm.gmm.edrx_value", in_nas, "eDRX", "s", "24.301, 9.9.3.46; 24.008, 10.5.5.32",
     reading::edrx},
    {"gsm_a.gm.gmm.cn_spec_drx_cycle_len_coef", in_nas_request, "UE-specific DRX cycle", "s",
     "24.301, 9.9.3.8; 24.008, 10.5.5.6", reading::indexed, drx_values},
    {"emm.nb_s1_drx_param", in_nas, "UE-specific DRX cycle in NB-S1 mode", "s", "24.301, 9.9.3.63",
     reading::indexed, nb_drx_values},
    {"esm.rel_assist_ind.ddx", in_nas_request, "release assistance", "", "24.301, 9.9.4.25",
     reading::indexed, release_assistance},

    // CIoT optimisations: what the modem can and prefers, what the network accepts.
    {"emm.cp_ciot_cap", in_nas_request, "control-plane CIoT optimisation", "", "24.301, 9.9.3.34",
     reading::indexed, no_or_yes},
    {"emm.up_ciot_cap", in_nas_request, "user-plane CIoT optimisation", "", "24.301, 9.9.3.34",
     reading::indexed, no_or_yes},
    {"emm.cp_ciot", in_nas_answer, "control-plane CIoT optimisation", "", "24.301, 9.9.3.12A",
     reading::indexed, no_or_yes},
    {"emm.up_ciot", in_nas_answer, "user-plane CIoT optimisation", "", "24.301, 9.9.3.12A",
     reading::indexed, no_or_yes},
    {"emm.pnb_ciot", in_nas_request, "preferred CIoT optimisation", "", "24.301, 9.9.3.0B",
     reading::indexed, preferred_optimisations},
    {"esm.ctrl_plane_only_ind.cpoi", in_nas_answer, "control plane only", "", "24.301, 9.9.4.23",
     reading::indexed, no_or_yes},

    // The session.
    {"gsm_a.gm.sm.apn", in_nas, "APN", "", "24.301, 9.9.4.1; 24.008, 10.5.6.1", reading::text},
    {"esm_pdn_type", in_nas, "PDN type", "", "24.301, 9.9.4.9 and 9.9.4.10", reading::indexed,
     pdn_types},
    {"esm.pdn_ipv4", in_nas_answer, "PDN address", "", "24.301, 9.9.4.9", reading::text},
    {"esm.pdn_ipv6_if_id", in_nas_answer, "PDN interface identifier", "", "24.301, 9.9.4.9",
     reading::text},
    {"esm.apn_ambr_dl", in_nas_answer, "APN-AMBR", "kbit/s", "24.301, 9.9.4.2", reading::apn_ambr},
    {"esm.ext_apn_ambr_dl", in_nas_answer, "extended APN-AMBR", "Mbit/s", "24.301, 9.9.4.29",
     reading::extended_apn_ambr},
    {"esm.serv_plmn_rate_ctrl_val",
     in_nas_answer,
     "serving PLMN rate control",
     "messages in 6 minutes",
     "24.301, 9.9.4.28; 23.401, 4.7.7.2",
     reading::number,
     {},
     10,
     65535},
    {"ipcp.opt.pri_dns_address", in_nas, "DNS server", "", "24.008, 10.5.6.3; RFC 1877",
     reading::text},
    {"ipcp.opt.sec_dns_address", in_nas, "DNS server", "", "24.008, 10.5.6.3; RFC 1877",
     reading::text},
    {"gsm_a.gm.sm.pco.dns.ipv4", in_nas, "DNS server", "", "24.008, 10.5.6.3", reading::text},
    {"gsm_a.gm.sm.pco.dns.ipv6", in_nas, "DNS server", "", "24.008, 10.5.6.3", reading::text},

    // The network, and how it ends.
    {"e212.tai.mcc", in_nas_answer, "operator", "", "24.301, 9.9.3.33; E.212",
     reading::operator_code},
    {"e212.gummei.mcc", in_nas_answer, "operator", "", "24.301, 9.9.3.12; E.212",
     reading::operator_code},
    {"emm.tai_tac",
     in_nas_answer,
     "tracking area code",
     "",
     "24.301, 9.9.3.33",
     reading::number,
     {},
     0,
     65535},
    {"emm.switch_off", in_nas_request, "switch off", "", "24.301, 9.9.3.7", reading::indexed,
     no_or_yes},
    {"emm.detach_type_ul", in_nas_request, "detach type", "", "24.301, 9.9.3.7", reading::indexed,
     detach_types},
    {"emm.detach_type_dl", in_nas_answer, "detach type", "", "24.301, 9.9.3.7", reading::indexed,
     network_detach_types},
    {"emm.cause", in_nas_answer, "EMM cause", "", "24.301, 9.9.3.9", reading::emm_cause},
    {"esm.cause", in_nas, "ESM cause", "", "24.301, 9.9.4.4", reading::esm_cause},
});

}  // namespace KIVRA::TSHARK::REPLAY
