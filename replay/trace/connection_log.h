/// What happened on the air, from the time stamps of records.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "replay/record/outcome.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// Durations in microseconds; the median is exact up to ten thousand of them, and that of every
/// second, fourth, ... one beyond.
class duration_statistics {
  public:
    void add(std::uint64_t duration);

    std::uint64_t count() const { return count_; }
    std::uint64_t sum() const { return sum_; }

    /// Of at least one.
    std::uint64_t least() const { return least_; }
    std::uint64_t median() const;
    std::uint64_t greatest() const { return greatest_; }

  private:
    std::uint64_t count_ = 0;
    std::uint64_t sum_ = 0;
    std::uint64_t least_ = 0;
    std::uint64_t greatest_ = 0;
    std::vector<std::uint64_t> kept_;
    /// Every how manieth is kept.
    std::uint64_t step_ = 1;
};

/// An RRC connection.
struct connection {
    std::uint64_t first_record = 0;
    std::uint64_t last_record = 0;
    /// Microseconds since 1970-01-01: of the request, of the last message before the release (there
    /// may be none), and of the release.
    std::uint64_t begin = 0;
    std::uint64_t last_content = 0;
    std::uint64_t end = 0;
    /// Why the modem asked for it, as tshark prints it, such as "mo-Data"; empty where it is not
    /// known.
    std::string cause = {};
};

/// A connection begins with RRCConnectionRequest, RRCConnectionResumeRequest or
/// RRCEarlyDataRequest and ends with RRCConnectionRelease, RRCConnectionReject or
/// RRCEarlyDataComplete; a second request begins it anew. A duration whose end is before its
/// beginning does not count. What a message between says is its
/// content: messages of the dedicated channels (DCCH), NAS messages and IP packets. Broadcasts and
/// paging are not.
class connection_log {
  public:
    void add(std::uint64_t number, const trace_record& record, const outcome& result);

    /// The first thousand, for reports that show them.
    const std::vector<connection>& connections() const { return connections_; }

    /// The one that ended last; nothing before the first end.
    const std::optional<connection>& last() const { return last_; }

    /// The one that goes on.
    const std::optional<connection>& current() const { return open_; }

    /// From request to release.
    const duration_statistics& connected() const { return connected_; }

    /// From the last content until the release: the network's inactivity timer.
    const duration_statistics& inactivity() const { return inactivity_; }

    /// From a release until the next request.
    const duration_statistics& idle() const { return idle_; }

    /// Between tracking area update requests; those less than 15 s apart count as one.
    const duration_statistics& between_updates() const { return between_updates_; }

    /// Connections that have no end in the trace, or no beginning.
    std::uint64_t incomplete() const { return incomplete_ + (open_ ? 1 : 0); }

    /// Paging messages that were received.
    std::uint64_t paging() const { return paging_; }

    /// How often each cause came.
    const std::map<std::string, std::uint64_t>& causes() const { return causes_; }

    /// Of the time from the first record to the last, in percent; nothing for a trace without a
    /// connection that ended, or without time.
    std::optional<double> share_connected() const;

    /// Microseconds since 1970-01-01; 0 before the first record.
    std::uint64_t begin() const { return begin_; }
    std::uint64_t end() const { return end_; }

  private:
    void open(std::uint64_t number, std::uint64_t timestamp, const std::string& cause);
    void close(std::uint64_t number, std::uint64_t timestamp);
    void update(std::uint64_t timestamp);

    std::optional<connection> open_;
    std::optional<connection> last_;
    std::vector<connection> connections_;
    duration_statistics connected_;
    duration_statistics inactivity_;
    duration_statistics idle_;
    duration_statistics between_updates_;
    std::optional<std::uint64_t> last_update_;
    std::map<std::string, std::uint64_t> causes_;
    std::uint64_t incomplete_ = 0;
    std::uint64_t paging_ = 0;
    std::uint64_t begin_ = 0;
    std::uint64_t end_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
