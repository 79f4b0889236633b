#include "parser/parser_registry.h"

#include "parser/lte_rrc_parser.h"
#include "parser/nas_eps_parser.h"

namespace KIVRA::TSHARK::PARSER {

parser_registry make_parser_registry(void* log_user_data, kivra_log_callback log_callback) {
    parser_registry parsers;
    parsers.push_back(std::make_unique<lte_rrc_parser>(log_user_data, log_callback));
    parsers.push_back(std::make_unique<nas_eps_parser>(log_user_data, log_callback));
    return parsers;
}

}  // namespace KIVRA::TSHARK::PARSER
