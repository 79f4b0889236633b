/// What LTE and LTE-M cells broadcast and configure: 3GPP TS 36.331, the order of values as in its
/// ASN.1. Spare values are left out.
#pragma once

#include <array>
#include <string_view>

#include "replay/settings/table_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// Where the places of rows begin: the members in tshark's output, without "lte-rrc.".
struct rrc_place {
    std::string_view member;
    places where;
    /// Where the member has to stand; 0 for anywhere.
    places within = 0;
};

inline constexpr auto rrc_places = std::to_array<rrc_place>({
    {"BCCH_BCH_Message_NB_element", in_mib},
    {"BCCH_BCH_Message_TDD_NB_element", in_mib},
    {"systemInformationBlockType1_element", in_sib1},
    {"systemInformationBlockType1_BR_r13_element", in_sib1},
    {"systemInformationBlockType1_r13_element", in_sib1},
    {"multiBandInfoList_tree", in_further_bands, in_sib1},
    {"multiBandInfoList_v9e0_tree", in_further_bands, in_sib1},
    {"multiBandInfoList_r13_tree", in_further_bands, in_sib1},
    {"sib2_element", in_sib2},
    {"sib2_r13_element", in_sib2},
    {"rsrp_ThresholdsPrachInfoList_r13_tree", in_ce_thresholds, in_sib2},
    {"gwus_Config_r16_element", in_group_wus, in_sib2},
    {"rrcConnectionSetup_element", in_connection},
    {"rrcConnectionSetup_r13_element", in_connection},
    {"rrcConnectionReconfiguration_element", in_connection},
    {"rrcConnectionReconfiguration_r13_element", in_connection},
    {"rrcConnectionResume_r13_element", in_connection},
    {"rrcConnectionReestablishment_element", in_connection},
    {"rrcConnectionReestablishment_r13_element", in_connection},
    {"rrcConnectionRelease_element", in_release},
    {"rrcConnectionRelease_r13_element", in_release},
    {"rrcEarlyDataComplete_r15_element", in_release},
    {"rrcConnectionReject_element", in_reject},
    {"rrcConnectionReject_r13_element", in_reject},
});

/// SystemInformationBlockType1 (6.2.2): cellBarred, cellReservedForOperatorUse, si-WindowLength and
/// si-WindowLength-BR-r13 in ms.
inline constexpr auto barred_values = std::to_array<std::string_view>({"barred", "not barred"});
inline constexpr auto reserved_values =
    std::to_array<std::string_view>({"reserved", "not reserved"});
inline constexpr auto si_windows =
    std::to_array<std::string_view>({"1", "2", "5", "10", "15", "20", "40"});
inline constexpr auto si_windows_br =
    std::to_array<std::string_view>({"20", "40", "60", "80", "120", "160", "200"});
/// PCCH-Config (6.3.2): rf32 to rf256 of 10 ms each, in s; nB and nB-v1310 as shares of the cycle
/// T; mpdcch-NumRepetition-Paging-r13, the same values as mpdcch-NumRepetition-r13.
inline constexpr auto paging_cycles =
    std::to_array<std::string_view>({"0.32", "0.64", "1.28", "2.56"});
inline constexpr auto nb_values =
    std::to_array<std::string_view>({"4", "2", "1", "1/2", "1/4", "1/8", "1/16", "1/32"});
inline constexpr auto nb_v1310_values = std::to_array<std::string_view>({"1/64", "1/128", "1/256"});
inline constexpr auto repetitions =
    std::to_array<std::string_view>({"1", "2", "4", "8", "16", "32", "64", "128", "256"});
/// UE-TimersAndConstants (6.3.6) and RLF-TimersAndConstants (6.3.2), in ms; n310 is a count.
inline constexpr auto t300_values =
    std::to_array<std::string_view>({"100", "200", "300", "400", "600", "1000", "1500", "2000"});
inline constexpr auto t300_v1310_values = std::to_array<std::string_view>(
    {"2500", "3000", "3500", "4000", "5000", "6000", "8000", "10000"});
inline constexpr auto t300_r15_values = std::to_array<std::string_view>(
    {"4000", "6000", "8000", "10000", "15000", "25000", "40000", "60000"});
inline constexpr auto t310_values =
    std::to_array<std::string_view>({"0", "50", "100", "200", "500", "1000", "2000"});
inline constexpr auto t310_v1330_values = std::to_array<std::string_view>({"4000", "6000"});
inline constexpr auto n310_values =
    std::to_array<std::string_view>({"1", "2", "3", "4", "6", "8", "10", "20"});
/// WUS-Config-r15 and GWUS-Config-r16 (6.3.2): the duration as a share of Rmax, paging occasions,
/// gaps in ms.
inline constexpr auto wus_durations =
    std::to_array<std::string_view>({"1/32", "1/16", "1/8", "1/4"});
/// numPOs is n1 by default.
inline constexpr auto default_wus_occasions = std::to_array<std::string_view>({"1"});
inline constexpr auto wus_occasions = std::to_array<std::string_view>({"1", "2", "4"});
inline constexpr auto wus_relaxed_cycles = std::to_array<std::string_view>({"1", "2", "4", "8"});
inline constexpr auto wus_gaps = std::to_array<std::string_view>({"40", "80", "160", "240"});
inline constexpr auto wus_long_gaps = std::to_array<std::string_view>({"1000", "2000"});
/// DRX-Config in MAC-MainConfig (6.3.2): psf in PDCCH subframes, sf in ms. 22 of the inactivity
/// timer is psf0-v1020.
inline constexpr auto released_or_setup = std::to_array<std::string_view>({"released", "set up"});
inline constexpr auto on_durations = std::to_array<std::string_view>(
    {"1", "2", "3", "4", "5", "6", "8", "10", "20", "30", "40", "50", "60", "80", "100", "200"});
inline constexpr auto on_durations_v1310 =
    std::to_array<std::string_view>({"300", "400", "500", "600", "800", "1000", "1200", "1600"});
inline constexpr auto inactivity_timers = std::to_array<std::string_view>(
    {"1",  "2",  "3",   "4",   "5",   "6",   "8",   "10",   "20",   "30",   "40", "50",
     "60", "80", "100", "200", "300", "500", "750", "1280", "1920", "2560", "0"});
inline constexpr auto retransmission_timers =
    std::to_array<std::string_view>({"1", "2", "4", "6", "8", "16", "24", "33"});
inline constexpr auto retransmission_timers_v1310 =
    std::to_array<std::string_view>({"40", "64", "80", "96", "112", "128", "160", "320"});
inline constexpr auto ul_retransmission_timers =
    std::to_array<std::string_view>({"0", "1", "2", "4", "6", "8", "16", "24", "33", "40", "64",
                                     "80", "96", "112", "128", "160", "320"});
inline constexpr auto long_cycles =
    std::to_array<std::string_view>({"10", "20", "32", "40", "64", "80", "128", "160", "256", "320",
                                     "512", "640", "1024", "1280", "2048", "2560"});
inline constexpr auto long_cycles_v1130 = std::to_array<std::string_view>({"60", "70"});
inline constexpr auto long_cycle_v1310 = std::to_array<std::string_view>({"60"});
inline constexpr auto short_cycles =
    std::to_array<std::string_view>({"2", "5", "8", "10", "16", "20", "32", "40", "64", "80", "128",
                                     "160", "256", "320", "512", "640"});
inline constexpr auto short_cycle_v1130 = std::to_array<std::string_view>({"4"});
inline constexpr auto zero = std::to_array<std::string_view>({"0"});
inline constexpr auto connected_edrx_cycles = std::to_array<std::string_view>({"5120", "10240"});
/// DataInactivityTimer-r14 (6.3.2), in s.
inline constexpr auto data_inactivity_timers =
    std::to_array<std::string_view>({"1", "2", "3", "5", "7", "10", "15", "20", "40", "50", "60",
                                     "80", "100", "120", "150", "180"});
/// PhysicalConfigDedicated (6.3.2).
inline constexpr auto ce_modes = std::to_array<std::string_view>({"A", "B"});
/// RRCConnectionRelease (6.2.2): ReleaseCause, and the kinds of RedirectedCarrierInfo.
inline constexpr auto release_causes = std::to_array<std::string_view>(
    {"loadBalancingTAUrequired", "other", "cs-FallbackHighPriority", "rrc-Suspend"});
inline constexpr auto redirections =
    std::to_array<std::string_view>({"E-UTRA", "GERAN", "UTRA FDD", "UTRA TDD", "CDMA2000 HRPD",
                                     "CDMA2000 1xRTT", "UTRA TDD", "NR"});
/// RRCEarlyDataComplete-r15 (6.2.2): the kinds of RedirectedCarrierInfo-r15-IEs.
inline constexpr auto early_redirections = std::to_array<std::string_view>(
    {"E-UTRA", "GERAN", "UTRA FDD", "CDMA2000 HRPD", "CDMA2000 1xRTT", "UTRA TDD"});

namespace CLAUSE {
inline constexpr std::string_view sib1 = "36.331, 6.2.2 (SystemInformationBlockType1)";
inline constexpr std::string_view sib2 = "36.331, 6.3.1 (SystemInformationBlockType2)";
inline constexpr std::string_view pcch = "36.331, 6.3.2 (PCCH-Config)";
inline constexpr std::string_view prach = "36.331, 6.3.2 (PRACH-Config); 36.133, 9.1.4";
inline constexpr std::string_view wus = "36.331, 6.3.2 (WUS-Config)";
inline constexpr std::string_view group_wus = "36.331, 6.3.2 (GWUS-Config)";
inline constexpr std::string_view timers = "36.331, 6.3.6 (UE-TimersAndConstants)";
inline constexpr std::string_view rlf = "36.331, 6.3.2 (RLF-TimersAndConstants)";
inline constexpr std::string_view mac = "36.331, 6.3.2 (MAC-MainConfig)";
inline constexpr std::string_view physical = "36.331, 6.3.2 (PhysicalConfigDedicated)";
inline constexpr std::string_view epdcch = "36.331, 6.3.2 (EPDCCH-Config)";
inline constexpr std::string_view release = "36.331, 6.2.2 (RRCConnectionRelease)";
inline constexpr std::string_view early = "36.331, 6.2.2 (RRCEarlyDataComplete)";
inline constexpr std::string_view reject = "36.331, 6.2.2 (RRCConnectionReject)";
}  // namespace CLAUSE

inline constexpr auto rrc_settings = std::to_array<table_row>({
    // System information block 1. Band 64 says that a v9e0 field has the band.
    {"plmn_Identity_element", in_sib1, "operator", "", CLAUSE::sib1, reading::plmn_identity},
    {"trackingAreaCode", in_sib1, "tracking area code", "", CLAUSE::sib1, reading::bits, {}, 0, 16},
    {"cellIdentity", in_sib1, "cell identity", "", CLAUSE::sib1, reading::bits, {}, 0, 28},
    {"cellBarred", in_sib1, "cell barred", "", CLAUSE::sib1, reading::indexed, barred_values},
    {"cellReservedForOperatorUse", in_sib1, "cell for operator use", "", CLAUSE::sib1,
     reading::indexed, reserved_values},
    {"p_Max", in_sib1, "p-Max", "dBm", CLAUSE::sib1, reading::number, {}, -30, 33},
    {"freqBandIndicator", in_sib1, "band", "", CLAUSE::sib1, reading::number, {}, 1, 63},
    {"freqBandIndicator_v9e0",
     in_sib1,
     "band",
     "",
     CLAUSE::sib1,
     reading::number,
     {},
     65,
     256,
     0,
     1},
    {"FreqBandIndicator",
     in_further_bands,
     "further band",
     "",
     CLAUSE::sib1,
     reading::number,
     {},
     1,
     63},
    {"freqBandIndicator_v9e0",
     in_further_bands,
     "further band",
     "",
     CLAUSE::sib1,
     reading::number,
     {},
     65,
     256},
    {"si_WindowLength", in_sib1, "SI window", "ms", CLAUSE::sib1, reading::indexed, si_windows},
    {"si_WindowLength_BR_r13", in_sib1, "SI window", "ms", CLAUSE::sib1, reading::indexed,
     si_windows_br, 0, 0, 0, 1},
    {"hyperSFN_r13", in_sib1, "hyper-SFN", "", CLAUSE::sib1, reading::bits, {}, 0, 10},
    {"eDRX_Allowed_r13", in_sib1, "eDRX allowed", "", CLAUSE::sib1, reading::indexed, only_yes},

    // System information block 2.
    {"defaultPagingCycle", in_sib2, "default paging cycle", "s", CLAUSE::pcch, reading::indexed,
     paging_cycles},
    {"nB", in_sib2, "nB", "T", CLAUSE::pcch, reading::indexed, nb_values},
    {"nB_v1310", in_sib2, "nB (CE)", "T", CLAUSE::pcch, reading::indexed, nb_v1310_values},
    {"mpdcch_NumRepetition_Paging_r13", in_sib2, "MPDCCH repetitions for paging", "", CLAUSE::pcch,
     reading::indexed, repetitions},
    {"RSRP_Range",
     in_ce_thresholds,
     "RSRP threshold of CE level",
     "dBm",
     CLAUSE::prach,
     reading::ce_level_number,
     {},
     0,
     97,
     -140},
    {"maxDurationFactor_r15", in_sib2, "WUS maximum duration", "Rmax", CLAUSE::wus,
     reading::indexed, wus_durations},
    {"wus_Config_r15_element", in_sib2, "WUS paging occasions", "", CLAUSE::wus, reading::presence,
     default_wus_occasions},
    {"numPOs_r15", in_sib2, "WUS paging occasions", "", CLAUSE::wus, reading::indexed,
     wus_occasions, 0, 0, 0, 1},
    {"timeOffsetDRX_r15", in_sib2, "WUS gap, DRX", "ms", CLAUSE::wus, reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Short_r15", in_sib2, "WUS gap, eDRX, short", "ms", CLAUSE::wus,
     reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Long_r15", in_sib2, "WUS gap, eDRX, long", "ms", CLAUSE::wus,
     reading::indexed, wus_long_gaps},
    {"numDRX_CyclesRelaxed_r16", in_sib2, "WUS relaxed DRX cycles", "", CLAUSE::wus,
     reading::indexed, wus_relaxed_cycles},
    {"timeParameters_r16_element", in_group_wus, "group WUS paging occasions", "",
     CLAUSE::group_wus, reading::presence, default_wus_occasions},
    {"maxDurationFactor_r16", in_group_wus, "group WUS maximum duration", "Rmax", CLAUSE::group_wus,
     reading::indexed, wus_durations},
    {"numPOs_r16", in_group_wus, "group WUS paging occasions", "", CLAUSE::group_wus,
     reading::indexed, wus_occasions, 0, 0, 0, 1},
    {"numDRX_CyclesRelaxed_r16", in_group_wus, "group WUS relaxed DRX cycles", "",
     CLAUSE::group_wus, reading::indexed, wus_relaxed_cycles},
    {"timeOffsetDRX_r16", in_group_wus, "group WUS gap, DRX", "ms", CLAUSE::group_wus,
     reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Short_r16", in_group_wus, "group WUS gap, eDRX, short", "ms",
     CLAUSE::group_wus, reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Long_r16", in_group_wus, "group WUS gap, eDRX, long", "ms", CLAUSE::group_wus,
     reading::indexed, wus_long_gaps},
    {"cp_EDT_r15", in_sib2, "early data transmission, control plane", "", CLAUSE::sib2,
     reading::indexed, only_yes},
    {"up_EDT_r15", in_sib2, "early data transmission, user plane", "", CLAUSE::sib2,
     reading::indexed, only_yes},
    {"rai_ActivationEnh_r16", in_sib2, "RAI activation", "", CLAUSE::sib2, reading::indexed,
     only_yes},
    {"t300", in_sib2, "T300", "ms", CLAUSE::timers, reading::indexed, t300_values},
    {"t300_v1310", in_sib2, "T300 (CE)", "ms", CLAUSE::timers, reading::indexed, t300_v1310_values},
    {"t300_r15", in_sib2, "T300 (EDT)", "ms", CLAUSE::timers, reading::indexed, t300_r15_values},
    {"t310", in_sib2, "T310", "ms", CLAUSE::timers, reading::indexed, t310_values},
    {"t310_v1330", in_sib2, "T310 (CE)", "ms", CLAUSE::timers, reading::indexed, t310_v1330_values},
    {"n310", in_sib2, "N310", "", CLAUSE::timers, reading::indexed, n310_values},

    // Connection setup and reconfiguration. The suffixed fields replace the plain ones.
    {"drx_Config", in_connection, "connected-mode DRX", "", CLAUSE::mac, reading::indexed,
     released_or_setup},
    {"drx_Config_r13", in_connection, "further DRX timers", "", CLAUSE::mac, reading::indexed,
     released_or_setup},
    {"longDRX_CycleStartOffset", in_connection, "long DRX cycle", "ms", CLAUSE::mac,
     reading::indexed, long_cycles},
    {"longDRX_CycleStartOffset_v1130", in_connection, "long DRX cycle", "ms", CLAUSE::mac,
     reading::indexed, long_cycles_v1130, 0, 0, 0, 1},
    {"sf60_v1310", in_connection, "long DRX cycle", "ms", CLAUSE::mac, reading::presence,
     long_cycle_v1310, 0, 0, 0, 2},
    {"shortDRX_Cycle", in_connection, "short DRX cycle", "ms", CLAUSE::mac, reading::indexed,
     short_cycles},
    {"shortDRX_Cycle_v1130", in_connection, "short DRX cycle", "ms", CLAUSE::mac, reading::indexed,
     short_cycle_v1130, 0, 0, 0, 1},
    {"drxShortCycleTimer",
     in_connection,
     "short DRX cycle timer",
     "short DRX cycles",
     CLAUSE::mac,
     reading::number,
     {},
     1,
     16},
    {"onDurationTimer", in_connection, "on-duration timer", "PDCCH subframes", CLAUSE::mac,
     reading::indexed, on_durations},
    {"onDurationTimer_v1310", in_connection, "on-duration timer", "PDCCH subframes", CLAUSE::mac,
     reading::indexed, on_durations_v1310, 0, 0, 0, 1},
    {"drx_InactivityTimer", in_connection, "DRX inactivity timer", "PDCCH subframes", CLAUSE::mac,
     reading::indexed, inactivity_timers},
    {"drx_RetransmissionTimer", in_connection, "DRX retransmission timer", "PDCCH subframes",
     CLAUSE::mac, reading::indexed, retransmission_timers},
    {"drx_RetransmissionTimer_v1130", in_connection, "DRX retransmission timer", "PDCCH subframes",
     CLAUSE::mac, reading::indexed, zero, 0, 0, 0, 1},
    {"drx_RetransmissionTimer_v1310", in_connection, "DRX retransmission timer", "PDCCH subframes",
     CLAUSE::mac, reading::indexed, retransmission_timers_v1310, 0, 0, 0, 2},
    {"drx_ULRetransmissionTimer_r13", in_connection, "DRX UL retransmission timer",
     "PDCCH subframes", CLAUSE::mac, reading::indexed, ul_retransmission_timers},
    {"eDRX_Config_CycleStartOffset_r13", in_connection, "connected-mode eDRX", "", CLAUSE::mac,
     reading::indexed, released_or_setup},
    {"eDRX_Config_CycleStartOffset_r13.setup", in_connection, "connected-mode eDRX cycle", "ms",
     CLAUSE::mac, reading::indexed, connected_edrx_cycles},
    {"dataInactivityTimer_r14", in_connection, "data inactivity timer", "s", CLAUSE::mac,
     reading::indexed, data_inactivity_timers},
    {"rai_Activation_r14", in_connection, "RAI activation", "", CLAUSE::mac, reading::indexed,
     only_yes},
    {"ce_Mode_r13", in_connection, "CE mode", "", CLAUSE::physical, reading::indexed,
     released_or_setup},
    {"ce_Mode_r13.setup", in_connection, "CE mode", "", CLAUSE::physical, reading::indexed,
     ce_modes, 0, 0, 0, 1},
    {"mpdcch_NumRepetition_r13", in_connection, "MPDCCH repetitions", "", CLAUSE::epdcch,
     reading::indexed, repetitions},
    {"t310_r9", in_connection, "T310", "ms", CLAUSE::rlf, reading::indexed, t310_values},
    {"t310_v1330", in_connection, "T310 (CE)", "ms", CLAUSE::rlf, reading::indexed,
     t310_v1330_values},
    {"n310_r9", in_connection, "N310", "", CLAUSE::rlf, reading::indexed, n310_values},

    // Connection release, early data complete, which ends a connection as well, and
    // reject. E-UTRA carrier 65535 says that a v9e0 field has the carrier.
    {"releaseCause", in_release, "release cause", "", CLAUSE::release, reading::indexed,
     release_causes},
    {"extendedWaitTime_r10",
     in_release,
     "extended wait time",
     "s",
     CLAUSE::release,
     reading::number,
     {},
     1,
     1800},
    {"redirectedCarrierInfo", in_release, "redirection", "", CLAUSE::release, reading::indexed,
     redirections},
    {"eutra",
     in_release,
     "redirection's carrier",
     "EARFCN",
     CLAUSE::release,
     reading::number,
     {},
     0,
     65534},
    {"eutra_v9e0",
     in_release,
     "redirection's carrier",
     "EARFCN",
     CLAUSE::release,
     reading::number,
     {},
     65536,
     262143,
     0,
     1},
    {"utra_FDD",
     in_release,
     "redirection's carrier",
     "UARFCN",
     CLAUSE::release,
     reading::number,
     {},
     0,
     16383},
    {"utra_TDD",
     in_release,
     "redirection's carrier",
     "UARFCN",
     CLAUSE::release,
     reading::number,
     {},
     0,
     16383},
    {"extendedWaitTime_r15",
     in_release,
     "extended wait time",
     "s",
     CLAUSE::early,
     reading::number,
     {},
     1,
     1800},
    {"redirectedCarrierInfo_r15", in_release, "redirection", "", CLAUSE::early, reading::indexed,
     early_redirections},
    {"eutra_r15",
     in_release,
     "redirection's carrier",
     "EARFCN",
     CLAUSE::early,
     reading::number,
     {},
     0,
     262143},
    {"utra_FDD_r15",
     in_release,
     "redirection's carrier",
     "UARFCN",
     CLAUSE::early,
     reading::number,
     {},
     0,
     16383},
    {"waitTime", in_reject, "wait time", "s", CLAUSE::reject, reading::number, {}, 1, 16},
    {"extendedWaitTime_r10",
     in_reject,
     "extended wait time",
     "s",
     CLAUSE::reject,
     reading::number,
     {},
     1,
     1800},
});

}  // namespace KIVRA::TSHARK::REPLAY
