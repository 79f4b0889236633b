#include "parser/esm_cause.h"

#include <algorithm>

namespace KIVRA::TSHARK::PARSER {

std::string_view esm_cause_reason(std::int32_t code) {
    const auto octet = static_cast<std::uint8_t>(code);
    const auto cause = std::ranges::find(esm_cause_table, octet, &esm_cause::code);
    return cause != esm_cause_table.end() ? cause->reason : undefined_esm_cause;
}

}  // namespace KIVRA::TSHARK::PARSER
