/// The records of a run as rows of a page.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "replay/record/outcome.h"
#include "replay/record/record.h"
#include "replay/trace/connection_log.h"

namespace KIVRA::TSHARK::REPLAY {

/// Makes of each record a JSON array:
///
/// 0. microseconds since the record before, since 1970-01-01 for the first
/// 1. the lane of the timeline, a `page_lane`
/// 2. the sum of `page_mark`s
/// 3. the message's name, text
/// 4. the format, text
/// 5. what the record tells, as the table for people has it, text
/// 6. its settings, JSON: arrays of name, value, unit, role, clause, whether it is known
/// 7. its result document, JSON
/// 8. why it failed, text
/// 9. its log messages, JSON: array of texts
/// 10. the connection that it ends: array of the first record's number, the microseconds before
///     this record of the request and of the last content, and the cause
///
/// A text stands in full where it first comes and gets the next number, from 1; where it comes
/// again, there is its number. 0 is the empty text. Trailing empty places are left out.
class page_rows {
  public:
    /// @param connections the run's, the record among them
    std::string row_of(const trace_record& record, const outcome& result,
                       const connection_log& connections, std::uint64_t number);

  private:
    std::string reference(const std::string& text);

    std::uint64_t last_time_ = 0;
    std::uint64_t texts_ = 0;
    /// Of the texts that are still known.
    std::unordered_map<std::string, std::uint64_t> numbers_;
    std::size_t known_bytes_ = 0;
};

/// Where the timeline shows a record.
enum class page_lane : std::uint8_t {
    rrc_uplink,
    rrc_downlink,
    broadcast,
    paging,
    nas_uplink,
    nas_downlink,
    /// NAS whose direction is not known.
    nas,
    ip,
    other,
};

page_lane lane_of(const trace_record& record, const message_description& message);

/// What a row's third place is the sum of.
enum page_mark : std::uint8_t {
    marks_malformed = 1,
    marks_ciphered = 2,
    marks_procedure = 4,
    marks_connection_request = 8,
    marks_connection_end = 16,
    marks_update_request = 32,
    marks_registration_accept = 64,
    /// A reject or a detach.
    marks_registration_end = 128,
};

}  // namespace KIVRA::TSHARK::REPLAY
