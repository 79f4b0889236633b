/// The parser of LTE RRC messages: idle-mode paging, connected-mode DRX and the RRC connection
/// messages (3GPP TS 36.331). It holds nothing of its own and may be shared between threads.
///
/// It reads the layer "lte_rrc" and writes texts under "lte-rrc" of the result document:
///
/// | member              | field                                                          |
/// |---------------------|----------------------------------------------------------------|
/// | idrx_int            | lte-rrc.defaultPagingCycle*, in seconds                        |
/// | idrx_reps           | lte-rrc.mpdcch_NumRepetition_Paging*, else                     |
/// |                     | lte-rrc.npdcch_NumRepetitionPaging*, a count                   |
/// | cdrx_int            | lte-rrc.longDRX_CycleStartOffset, by the table of DRX timers   |
/// | cdrx_on_duration    | lte-rrc.onDurationTimer, in PDCCH subframes                    |
/// | cdrx_inactive_timer | lte-rrc.drx_InactivityTimer, in PDCCH subframes                |
/// | connection_state    | the RRC connection message that the packet holds               |
///
/// A field that the packet lacks leaves its member as it was.
#pragma once

#include "parser/parser_base.h"

namespace KIVRA::TSHARK::PARSER {

class lte_rrc_parser final : public parser_base {
  public:
    using parser_base::parser_base;

    bool accepts(const nlohmann::json& packet) const override;

    /// @throws nlohmann::json::type_error 302 for a field that is not a text, 305 when the result's
    ///     "lte-rrc" is neither object nor null
    void parse(const nlohmann::json& packet, nlohmann::json& result) const override;
};

}  // namespace KIVRA::TSHARK::PARSER
