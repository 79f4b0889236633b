/// The parser of NAS messages of EPS, mobility and session management (3GPP TS 24.301): timers,
/// PDN, serving operator and causes. It only reads what it was made with, and may be shared between
/// threads.
///
/// It reads the layer "nas-eps" and writes under "nas-eps" of the result document, in this order:
///
/// | member                            | source                                               |
/// |-----------------------------------|------------------------------------------------------|
/// | gprs_timer_2_T3324_value, ...     | the timers of `gprs_timers`                          |
/// | pdn                               | a copy of the PDN address                            |
/// | apn_aggregate_maximum_bit_rate    | a copy of the APN-AMBR; in it, in kbit/s,            |
/// |                                   | APN_AMBR_downlink_kbps and APN_AMBR_uplink_kbps      |
/// | mcc_code, mnc_code                | the codes of the GUTI, integers                      |
/// | mcc, mnc                          | names of the country and of the operator with these  |
/// |                                   | codes                                                |
/// | apn                               | the access point name in the ESM message container   |
/// | tac                               | the tracking area code of the TAI list, text         |
/// | cause                             | code (integer) and reason (text) of the ESM cause in |
/// |                                   | the ESM message container                            |
/// | accept                            | the EPS attach result                                |
/// | dns_server_address_config         | a copy of "ipcp" in the protocol configuration       |
/// |                                   | options, or else in the extended ones                |
/// | nas_eps_emm_switch_off            | the switch-off bit of a detach                       |
/// | nas_msg_emm_type                  | the EMM message type                                 |
///
/// A source that the packet lacks leaves its member as it was.
#pragma once

#include <memory>
#include <utility>

#include "parser/operator_database.h"
#include "parser/parser_base.h"

namespace KIVRA::TSHARK::PARSER {

class nas_eps_parser final : public parser_base {
  public:
    /// @param log_user_data, log_callback as for every parser
    /// @param operators not null
    /// @throws what `built_in_operators` throws
    nas_eps_parser(void* log_user_data, kivra_log_callback log_callback,
                   std::shared_ptr<const operator_list> operators = built_in_operators())
        : parser_base(log_user_data, log_callback), operators_(std::move(operators)) {}

    bool accepts(const nlohmann::json& packet) const override;

    /// @throws nlohmann::json::type_error 302 for a field that is not a text, 305 when the result
    ///     holds no object where one is to be written into
    /// @throws std::invalid_argument, std::out_of_range for a field that is not a number, see
    ///     number_conversion.h
    /// @throws what `find_operator` throws; and type_error 302 for an operator without a name
    void parse(const nlohmann::json& packet, nlohmann::json& result) const override;

  private:
    std::shared_ptr<const operator_list> operators_;
};

}  // namespace KIVRA::TSHARK::PARSER
