/// The power-profile parameter file: one flat JSON object of 31 profiler settings, every value a
/// text, sorted by name, indented by 4 blanks, without a newline at its end. Seven values come
/// from the trace; the rest, and what the trace does not tell, is a fixed default.
#pragma once

#include <span>
#include <string_view>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::PROFILE {

struct profile_member {
    std::string_view name;
    std::string_view value;
};

/// All 31 members, sorted by name, as they stand before anything is known of the trace. `idrx_int`
/// and `idrx_reps` have no default (their value here is empty): no file is written without them.
std::span<const profile_member> profile_defaults();

/// Writes the context's parameter file from its texts and then clears the texts. Does nothing at
/// all while the path, `idrx_int` or `idrx_reps` is empty.
///
/// A file that can't be written is not reported.
/// @throws nlohmann::json::type_error 316 for a text that is no UTF-8; nothing is written and no
///     text cleared then
void write_parameter_file(sink_context& context);

}  // namespace KIVRA::TSHARK::PROFILE
