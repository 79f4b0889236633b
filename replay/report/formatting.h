/// Texts as a run prints them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// UTC as in "2026-01-31T09:15:00.000250Z"; times beyond the year 9999 as the plain number.
/// @param timestamp microseconds since 1970-01-01
std::string iso_8601(std::uint64_t timestamp);

/// The text on one line, with nothing in it that a terminal would act on: control characters become
/// "\x1b" and the like.
std::string printable(std::string_view text);

/// How many columns of a terminal the text takes: its characters.
/// @param text UTF-8
std::size_t columns_of(std::string_view text);

/// Prints words on lines of 80 columns that begin with the same text.
void print_wrapped(std::ostream& out, std::string_view text, std::string_view line_start);

/// Goes on in a line that has been begun, and with lines of 80 columns behind it.
/// @param column how many columns of the line are taken
void print_wrapped(std::ostream& out, std::string_view text, std::size_t column,
                   std::string_view line_start);

/// "1 record", "2 records".
std::string pluralise(std::uint64_t count, std::string_view noun);

}  // namespace KIVRA::TSHARK::REPLAY
