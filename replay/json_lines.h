/// The report for programs: JSON Lines.
#pragma once

#include <cstdint>
#include <string>

#include "replay/record_runner.h"

namespace KIVRA::TSHARK::REPLAY {

/// A record as one line, its end included:
///
/// | member | what                                                                     |
/// |--------|--------------------------------------------------------------------------|
/// | number | the record's, from 1                                                     |
/// | time   | of the record, as `iso_8601` has it                                      |
/// | format | the dissector's name, text                                               |
/// | result | the result document, null when there is none; missing on a failure       |
/// | error  | why the record failed, text; only then                                   |
/// | log    | the log messages meanwhile: array of {"level": integer, "message": text} |
///
/// What is no UTF-8 in a text becomes U+FFFD.
std::string json_line(std::uint64_t number, const record& packet, const outcome& result);

}  // namespace KIVRA::TSHARK::REPLAY
