/// The operator list that is built into the program, as JSON text.
///
/// Each program that links the core links one object library that defines it: `kivra_operators`,
/// which holds data/operators.json, or another one made by `kivra_embed_operators`.
#pragma once

#include <string_view>

namespace KIVRA::TSHARK::DATA {

/// UTF-8, followed by a zero byte that is not part of the view; lives as long as the program.
std::string_view embedded_operators();

}  // namespace KIVRA::TSHARK::DATA
