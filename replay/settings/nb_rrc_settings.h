/// What NB-IoT cells broadcast and configure: 3GPP TS 36.331, the order of values as in its ASN.1.
/// Spare values are left out.
#pragma once

#include <array>
#include <string_view>

#include "replay/settings/rrc_settings.h"
#include "replay/settings/table_row.h"

namespace KIVRA::TSHARK::REPLAY {

/// SystemInformationBlockType1-NB (6.7.2): si-WindowLength-r13, in ms.
inline constexpr auto nb_si_windows =
    std::to_array<std::string_view>({"160", "320", "480", "640", "960", "1280", "1600"});
/// PCCH-Config-NB-r13 (6.7.3.2): rf128 to rf1024 of 10 ms each, in s; nB as a share of the cycle T;
/// npdcch-NumRepetitionPaging-r13, the same values as npdcch-NumRepetitions-r13.
inline constexpr auto nb_paging_cycles =
    std::to_array<std::string_view>({"1.28", "2.56", "5.12", "10.24"});
inline constexpr auto nb_nb_values =
    std::to_array<std::string_view>({"4", "2", "1", "1/2", "1/4", "1/8", "1/16", "1/32", "1/64",
                                     "1/128", "1/256", "1/512", "1/1024"});
inline constexpr auto nb_repetitions = std::to_array<std::string_view>(
    {"1", "2", "4", "8", "16", "32", "64", "128", "256", "512", "1024", "2048"});
/// ue-SpecificDRX-CycleMin-r16 of RadioResourceConfigCommonSIB-NB-r13 (6.7.3.2), in s.
inline constexpr auto nb_specific_cycles =
    std::to_array<std::string_view>({"0.32", "0.64", "1.28", "2.56", "5.12", "10.24"});
/// UE-TimersAndConstants-NB-r13 (6.7.3.6) and RLF-TimersAndConstants-NB-r13 (6.7.3.2), in ms.
inline constexpr auto nb_t300_values = std::to_array<std::string_view>(
    {"2500", "4000", "6000", "10000", "15000", "25000", "40000", "60000"});
inline constexpr auto nb_t300_v1530_values =
    std::to_array<std::string_view>({"80000", "100000", "120000"});
inline constexpr auto nb_t300_r15_values = std::to_array<std::string_view>(
    {"6000", "10000", "15000", "25000", "40000", "60000", "80000", "120000"});
inline constexpr auto nb_t310_values =
    std::to_array<std::string_view>({"0", "200", "500", "1000", "2000", "4000", "8000"});
/// WUS-Config-NB-r15 and GWUS-Config-NB-r16 (6.7.3.2): the duration as a share of Rmax.
inline constexpr auto nb_wus_durations =
    std::to_array<std::string_view>({"1/128", "1/64", "1/32", "1/16", "1/8", "1/4", "1/2"});
/// DRX-Config-NB-r13 in MAC-MainConfig-NB-r13 (6.7.3.2): pp in PDCCH periods, sf in ms.
inline constexpr auto nb_on_durations =
    std::to_array<std::string_view>({"1", "2", "3", "4", "8", "16", "32"});
inline constexpr auto nb_inactivity_timers =
    std::to_array<std::string_view>({"0", "1", "2", "3", "4", "8", "16", "32"});
inline constexpr auto nb_retransmission_timers =
    std::to_array<std::string_view>({"0", "1", "2", "4", "6", "8", "16", "24", "33"});
inline constexpr auto nb_cycles = std::to_array<std::string_view>(
    {"256", "512", "1024", "1536", "2048", "3072", "4096", "4608", "6144", "7680", "8192", "9216"});
inline constexpr auto nb_cycles_v1430 =
    std::to_array<std::string_view>({"1280", "2560", "5120", "10240"});
/// RRCConnectionRelease-NB (6.7.2): ReleaseCause-NB-r13.
inline constexpr auto nb_release_causes =
    std::to_array<std::string_view>({"loadBalancingTAUrequired", "other", "rrc-Suspend"});

namespace CLAUSE {
inline constexpr std::string_view nb_mib = "36.331, 6.7.2 (MasterInformationBlock-NB)";
inline constexpr std::string_view nb_tdd_mib = "36.331, 6.7.2 (MasterInformationBlock-TDD-NB)";
inline constexpr std::string_view nb_sib1 = "36.331, 6.7.2 (SystemInformationBlockType1-NB)";
inline constexpr std::string_view nb_sib2 = "36.331, 6.7.3.1 (SystemInformationBlockType2-NB)";
inline constexpr std::string_view nb_common = "36.331, 6.7.3.2 (RadioResourceConfigCommonSIB-NB)";
inline constexpr std::string_view nb_nprach =
    "36.331, 6.7.3.2 (NPRACH-ConfigSIB-NB); 36.133, 9.1.4";
inline constexpr std::string_view nb_wus = "36.331, 6.7.3.2 (WUS-Config-NB)";
inline constexpr std::string_view nb_group_wus = "36.331, 6.7.3.2 (GWUS-Config-NB)";
inline constexpr std::string_view nb_timers = "36.331, 6.7.3.6 (UE-TimersAndConstants-NB)";
inline constexpr std::string_view nb_rlf = "36.331, 6.7.3.2 (RLF-TimersAndConstants-NB)";
inline constexpr std::string_view nb_mac = "36.331, 6.7.3.2 (MAC-MainConfig-NB)";
inline constexpr std::string_view nb_physical = "36.331, 6.7.3.2 (PhysicalConfigDedicated-NB)";
inline constexpr std::string_view nb_release = "36.331, 6.7.2 (RRCConnectionRelease-NB)";
inline constexpr std::string_view nb_early = "36.331, 6.7.2 (RRCEarlyDataComplete-NB)";
inline constexpr std::string_view nb_reject = "36.331, 6.7.2 (RRCConnectionReject-NB)";
}  // namespace CLAUSE

inline constexpr auto nb_rrc_settings = std::to_array<table_row>({
    // Master information blocks and system information block 1, which share the hyper-SFN.
    {"hyperSFN_LSB_r13",
     in_mib,
     "hyper-SFN, 2 lower bits",
     "",
     CLAUSE::nb_mib,
     reading::bits,
     {},
     0,
     2},
    {"hyperSFN_LSB_r15",
     in_mib,
     "hyper-SFN, 2 lower bits",
     "",
     CLAUSE::nb_tdd_mib,
     reading::bits,
     {},
     0,
     2},
    {"ab_Enabled_r13", in_mib, "access barring", "", CLAUSE::nb_mib, reading::indexed, no_or_yes},
    {"ab_Enabled_r15", in_mib, "access barring", "", CLAUSE::nb_tdd_mib, reading::indexed,
     no_or_yes},
    {"hyperSFN_MSB_r13",
     in_sib1,
     "hyper-SFN, 8 upper bits",
     "",
     CLAUSE::nb_sib1,
     reading::bits,
     {},
     0,
     8},
    {"plmn_Identity_r13_element", in_sib1, "operator", "", CLAUSE::nb_sib1, reading::plmn_identity},
    {"trackingAreaCode_r13",
     in_sib1,
     "tracking area code",
     "",
     CLAUSE::nb_sib1,
     reading::bits,
     {},
     0,
     16},
    {"cellIdentity_r13", in_sib1, "cell identity", "", CLAUSE::nb_sib1, reading::bits, {}, 0, 28},
    {"cellBarred_r13", in_sib1, "cell barred", "", CLAUSE::nb_sib1, reading::indexed,
     barred_values},
    {"cellReservedForOperatorUse_r13", in_sib1, "cell for operator use", "", CLAUSE::nb_sib1,
     reading::indexed, reserved_values},
    {"p_Max_r13", in_sib1, "p-Max", "dBm", CLAUSE::nb_sib1, reading::number, {}, -30, 33},
    {"freqBandIndicator_r13", in_sib1, "band", "", CLAUSE::nb_sib1, reading::number, {}, 1, 256},
    {"freqBandIndicator_r13",
     in_further_bands,
     "further band",
     "",
     CLAUSE::nb_sib1,
     reading::number,
     {},
     1,
     256},
    {"si_WindowLength_r13", in_sib1, "SI window", "ms", CLAUSE::nb_sib1, reading::indexed,
     nb_si_windows},

    // System information block 2.
    {"defaultPagingCycle_r13", in_sib2, "default paging cycle", "s", CLAUSE::nb_common,
     reading::indexed, nb_paging_cycles},
    {"nB_r13", in_sib2, "nB", "T", CLAUSE::nb_common, reading::indexed, nb_nb_values},
    {"npdcch_NumRepetitionPaging_r13", in_sib2, "NPDCCH repetitions for paging", "",
     CLAUSE::nb_common, reading::indexed, nb_repetitions},
    {"ue_SpecificDRX_CycleMin_r16", in_sib2, "least UE-specific DRX cycle", "s", CLAUSE::nb_common,
     reading::indexed, nb_specific_cycles},
    {"RSRP_Range",
     in_ce_thresholds,
     "RSRP threshold of CE level",
     "dBm",
     CLAUSE::nb_nprach,
     reading::ce_level_number,
     {},
     0,
     97,
     -140},
    {"maxDurationFactor_r15", in_sib2, "WUS maximum duration", "Rmax", CLAUSE::nb_wus,
     reading::indexed, nb_wus_durations},
    {"wus_Config_r15_element", in_sib2, "WUS paging occasions", "", CLAUSE::nb_wus,
     reading::presence, default_wus_occasions},
    {"numPOs_r15", in_sib2, "WUS paging occasions", "", CLAUSE::nb_wus, reading::indexed,
     wus_occasions, 0, 0, 0, 1},
    {"numDRX_CyclesRelaxed_r15", in_sib2, "WUS relaxed DRX cycles", "", CLAUSE::nb_wus,
     reading::indexed, wus_relaxed_cycles},
    {"timeOffsetDRX_r15", in_sib2, "WUS gap, DRX", "ms", CLAUSE::nb_wus, reading::indexed,
     wus_gaps},
    {"timeOffset_eDRX_Short_r15", in_sib2, "WUS gap, eDRX, short", "ms", CLAUSE::nb_wus,
     reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Long_r15", in_sib2, "WUS gap, eDRX, long", "ms", CLAUSE::nb_wus,
     reading::indexed, wus_long_gaps},
    {"timeParameters_r16_element", in_group_wus, "group WUS paging occasions", "",
     CLAUSE::nb_group_wus, reading::presence, default_wus_occasions},
    {"maxDurationFactor_r15", in_group_wus, "group WUS maximum duration", "Rmax",
     CLAUSE::nb_group_wus, reading::indexed, nb_wus_durations},
    {"numPOs_r15", in_group_wus, "group WUS paging occasions", "", CLAUSE::nb_group_wus,
     reading::indexed, wus_occasions, 0, 0, 0, 1},
    {"numDRX_CyclesRelaxed_r15", in_group_wus, "group WUS relaxed DRX cycles", "",
     CLAUSE::nb_group_wus, reading::indexed, wus_relaxed_cycles},
    {"timeOffsetDRX_r15", in_group_wus, "group WUS gap, DRX", "ms", CLAUSE::nb_group_wus,
     reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Short_r15", in_group_wus, "group WUS gap, eDRX, short", "ms",
     CLAUSE::nb_group_wus, reading::indexed, wus_gaps},
    {"timeOffset_eDRX_Long_r15", in_group_wus, "group WUS gap, eDRX, long", "ms",
     CLAUSE::nb_group_wus, reading::indexed, wus_long_gaps},
    {"cp_EDT_r15", in_sib2, "early data transmission, control plane", "", CLAUSE::nb_sib2,
     reading::indexed, only_yes},
    {"up_EDT_r15", in_sib2, "early data transmission, user plane", "", CLAUSE::nb_sib2,
     reading::indexed, only_yes},
    {"rai_ActivationEnh_r16", in_sib2, "RAI activation", "", CLAUSE::nb_sib2, reading::indexed,
     only_yes},
    {"t300_r13", in_sib2, "T300", "ms", CLAUSE::nb_timers, reading::indexed, nb_t300_values},
    {"t300_v1530", in_sib2, "T300", "ms", CLAUSE::nb_timers, reading::indexed, nb_t300_v1530_values,
     0, 0, 0, 1},
    {"t300_r15", in_sib2, "T300 (EDT)", "ms", CLAUSE::nb_timers, reading::indexed,
     nb_t300_r15_values},
    {"t310_r13", in_sib2, "T310", "ms", CLAUSE::nb_timers, reading::indexed, nb_t310_values},
    {"n310_r13", in_sib2, "N310", "", CLAUSE::nb_timers, reading::indexed, n310_values},

    // Connection setup and reconfiguration. The suffixed cycle replaces the plain one.
    {"drx_Config_r13", in_connection, "connected-mode DRX", "", CLAUSE::nb_mac, reading::indexed,
     released_or_setup},
    {"drx_Cycle_r13", in_connection, "long DRX cycle", "ms", CLAUSE::nb_mac, reading::indexed,
     nb_cycles},
    {"drx_Cycle_v1430", in_connection, "long DRX cycle", "ms", CLAUSE::nb_mac, reading::indexed,
     nb_cycles_v1430, 0, 0, 0, 1},
    {"onDurationTimer_r13", in_connection, "on-duration timer", "PDCCH periods", CLAUSE::nb_mac,
     reading::indexed, nb_on_durations},
    {"drx_InactivityTimer_r13", in_connection, "DRX inactivity timer", "PDCCH periods",
     CLAUSE::nb_mac, reading::indexed, nb_inactivity_timers},
    {"drx_RetransmissionTimer_r13", in_connection, "DRX retransmission timer", "PDCCH periods",
     CLAUSE::nb_mac, reading::indexed, nb_retransmission_timers},
    {"drx_ULRetransmissionTimer_r13", in_connection, "DRX UL retransmission timer", "PDCCH periods",
     CLAUSE::nb_mac, reading::indexed, ul_retransmission_timers},
    {"dataInactivityTimer_r14", in_connection, "data inactivity timer", "s", CLAUSE::nb_mac,
     reading::indexed, data_inactivity_timers},
    {"rai_Activation_r14", in_connection, "RAI activation", "", CLAUSE::nb_mac, reading::indexed,
     only_yes},
    {"npdcch_NumRepetitions_r13", in_connection, "NPDCCH repetitions", "", CLAUSE::nb_physical,
     reading::indexed, nb_repetitions},
    {"t310_r13", in_connection, "T310", "ms", CLAUSE::nb_rlf, reading::indexed, nb_t310_values},
    {"n310_r13", in_connection, "N310", "", CLAUSE::nb_rlf, reading::indexed, n310_values},

    // Connection release, early data complete, which ends a connection as well, and reject.
    {"releaseCause_r13", in_release, "release cause", "", CLAUSE::nb_release, reading::indexed,
     nb_release_causes},
    {"extendedWaitTime_r13",
     in_release,
     "extended wait time",
     "s",
     CLAUSE::nb_release,
     reading::number,
     {},
     1,
     1800},
    {"extendedWaitTime_CPdata_r14",
     in_release,
     "extended wait time, control plane data",
     "s",
     CLAUSE::nb_release,
     reading::number,
     {},
     1,
     1800},
    {"carrierFreq_r13",
     in_release,
     "redirection's carrier",
     "EARFCN",
     CLAUSE::nb_release,
     reading::number,
     {},
     0,
     262143},
    {"extendedWaitTime_r15",
     in_release,
     "extended wait time",
     "s",
     CLAUSE::nb_early,
     reading::number,
     {},
     1,
     1800},
    {"extendedWaitTime_r13",
     in_reject,
     "extended wait time",
     "s",
     CLAUSE::nb_reject,
     reading::number,
     {},
     1,
     1800},
});

}  // namespace KIVRA::TSHARK::REPLAY
