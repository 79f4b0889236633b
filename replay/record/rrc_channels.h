/// The logical channels of LTE RRC, each with what Wireshark calls it.
#pragma once

#include <array>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

struct rrc_channel {
    /// As 3GPP writes it, with the message class behind a blank where there are several.
    std::string_view name;
    /// The dissector that reads the channel's messages.
    std::string_view dissector;
    /// The outermost element of its dissection, without "lte-rrc." and "_element".
    std::string_view element;
};

/// 3GPP TS 36.331, 6.2.1 and 6.7.1; Wireshark's packet-lte-rrc.
inline constexpr std::array<rrc_channel, 23> rrc_channels{{
    {"BCCH-BCH", "lte_rrc.bcch_bch", "BCCH_BCH_Message"},
    {"BCCH-BCH MBMS", "lte_rrc.bcch_bch.mbms", "BCCH_BCH_Message_MBMS"},
    {"BCCH-BCH NB", "lte_rrc.bcch_bch.nb", "BCCH_BCH_Message_NB"},
    {"BCCH-BCH TDD NB", "lte_rrc.bcch_bch.nb.tdd", "BCCH_BCH_Message_TDD_NB"},
    {"BCCH-DL-SCH", "lte_rrc.bcch_dl_sch", "BCCH_DL_SCH_Message"},
    {"BCCH-DL-SCH BR", "lte_rrc.bcch_dl_sch_br", "BCCH_DL_SCH_Message_BR"},
    {"BCCH-DL-SCH MBMS", "lte_rrc.bcch_dl_sch.mbms", "BCCH_DL_SCH_Message_MBMS"},
    {"BCCH-DL-SCH NB", "lte_rrc.bcch_dl_sch.nb", "BCCH_DL_SCH_Message_NB"},
    {"DL-CCCH", "lte_rrc.dl_ccch", "DL_CCCH_Message"},
    {"DL-CCCH NB", "lte_rrc.dl_ccch.nb", "DL_CCCH_Message_NB"},
    {"DL-DCCH", "lte_rrc.dl_dcch", "DL_DCCH_Message"},
    {"DL-DCCH NB", "lte_rrc.dl_dcch.nb", "DL_DCCH_Message_NB"},
    {"MCCH", "lte_rrc.mcch", "MCCH_Message"},
    {"PCCH", "lte_rrc.pcch", "PCCH_Message"},
    {"PCCH NB", "lte_rrc.pcch.nb", "PCCH_Message_NB"},
    {"SBCCH-SL-BCH", "lte_rrc.sbcch_sl_bch", "SBCCH_SL_BCH_Message"},
    {"SBCCH-SL-BCH V2X", "lte_rrc.sbcch_sl_bch.v2x", "SBCCH_SL_BCH_Message_V2X_r14"},
    {"SC-MCCH", "lte_rrc.sc_mcch", "SC_MCCH_Message_r13"},
    {"SC-MCCH NB", "lte_rrc.sc_mcch.nb", "SC_MCCH_Message_NB"},
    {"UL-CCCH", "lte_rrc.ul_ccch", "UL_CCCH_Message"},
    {"UL-CCCH NB", "lte_rrc.ul_ccch.nb", "UL_CCCH_Message_NB"},
    {"UL-DCCH", "lte_rrc.ul_dcch", "UL_DCCH_Message"},
    {"UL-DCCH NB", "lte_rrc.ul_dcch.nb", "UL_DCCH_Message_NB"},
}};

/// The channel of a member of tshark's JSON output, for example
/// "lte-rrc.BCCH_DL_SCH_Message_element"; null for every other member.
const rrc_channel* channel_of_member(std::string_view member);

}  // namespace KIVRA::TSHARK::REPLAY
