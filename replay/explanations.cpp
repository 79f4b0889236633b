#include "replay/explanations.h"

#include <algorithm>
#include <array>

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct explained_complaint {
    /// A part of the complaint.
    std::string_view sign;
    std::string_view explanation;
};

/// The first that fits counts.
constexpr std::array<explained_complaint, 11> explained_complaints{{
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
    {"output of tshark ended",
     "tshark ended before the capture did, and the records behind that place have no result. "
     "Without --batch each record has a tshark of its own."},
    {"invoking tshark failed with error",
     "The system could not create a process for tshark; the number is the system's."},
    {"cut short by the snapshot length",
     "The capture holds only the beginning of the packet; capture without a snapshot length."},
    {" mapping not found",
     "tshark shows a value that the table of its field does not have; the field is left out."},
}};

}  // namespace

std::string_view explanation_of(std::string_view complaint) {
    const auto found = std::ranges::find_if(explained_complaints, [&](const auto& candidate) {
        return complaint.find(candidate.sign) != std::string_view::npos;
    });
    return found == explained_complaints.end() ? "" : found->explanation;
}

}  // namespace KIVRA::TSHARK::REPLAY
