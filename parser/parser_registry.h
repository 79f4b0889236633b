/// The ordered list of packet parsers, owned by the sink context. The first parser that accepts a
/// packet is the only one that parses it, so the order decides what a packet that carries both
/// protocols counts as: LTE RRC comes before NAS EPS.
#pragma once

#include <memory>
#include <vector>

#include "parser/parser_base.h"

namespace KIVRA::TSHARK::PARSER {

using parser_registry = std::vector<std::unique_ptr<const parser_base>>;

/// A `lte_rrc_parser`, then a `nas_eps_parser`.
/// @throws nlohmann::json::exception when the operator list cannot be read
parser_registry make_parser_registry(void* log_user_data, kivra_log_callback log_callback);

}  // namespace KIVRA::TSHARK::PARSER
