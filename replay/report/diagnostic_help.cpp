#include "replay/report/diagnostic_help.h"

#include <algorithm>
#include <array>
#include <span>

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// Help for a text that comes out of the plug-in, which gives no code with it.
struct help_entry {
    /// A part of the text.
    std::string_view fragment;
    std::string_view help;
};

/// The first that fits counts.
constexpr std::array<help_entry, 7> analysis_help{{
    {"invalid stoi argument",
     "The message names a network (GUTI) that the list of operators does not know, or that stands "
     "behind the list's first entry without a code; lab networks such as 001/01 do so every time. "
     "The record gives no result, and nothing of it reaches the profile."},
    {"type must be string, but is null",
     "The message names a network (GUTI) for which the list of operators has no name. The record "
     "gives no result, and nothing of it reaches the profile."},
    {"stoi argument out of range", "tshark shows a code that is no 32-bit number."},
    {"json.exception.parse_error",
     "What tshark printed is no JSON: tshark ended early, or it is not tshark."},
    {"json.exception.type_error", "tshark shows a field in a form that the parsers don't expect."},
    {"nested more than", "What tshark printed is nested more deeply than tshark itself does."},
    {"cannot open file",
     "tshark left no output: the working directory may be read-only, full or gone."},
}};

constexpr std::array<help_entry, 2> log_help{{
    {"invoking tshark failed with error",
     "The system could not start a process for tshark; the number is the system's."},
    {" mapping not found",
     "tshark shows a value that the table of its field does not have; the field is left out."},
}};

std::string_view first_match(std::span<const help_entry> entries, std::string_view text) {
    const auto found = std::ranges::find_if(entries, [text](const help_entry& entry) {
        return text.find(entry.fragment) != std::string_view::npos;
    });
    return found == entries.end() ? "" : found->help;
}

}  // namespace

std::string_view help_for(const record_failure& failure) {
    switch (failure.kind) {
        case failure_kind::analysis:
            return first_match(analysis_help, failure.text);
        case failure_kind::malformed_packet:
            return "";
        case failure_kind::truncated_packet:
            return "The capture holds only the beginning of the packet; capture without a snapshot "
                   "length.";
        case failure_kind::tshark_ended:
            return "tshark ended before the capture did, and the records behind that place have no "
                   "result. Without --batch each record has a tshark of its own.";
    }
    return "";
}

std::string_view help_for(const log_message& message) {
    return first_match(log_help, message.text);
}

}  // namespace KIVRA::TSHARK::REPLAY
