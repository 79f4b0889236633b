/// One tshark that dissects many records: it is fed a capture through a pipe and prints each packet
/// as soon as it has read it. Used from one thread.
///
/// tshark's display filter drops packets without a word. So that this can be told from a packet
/// that is still to come, a packet that the filter is known to pass is sent behind the records:
/// when it comes out, the records before it have been printed or dropped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "analysis/tshark/packet_splitter.h"
#include "platform/piped_process.h"

namespace KIVRA::TSHARK::ANALYSIS {

/// tshark has ended, or it printed something that is not a packet.
class session_broken : public std::runtime_error {
  public:
    session_broken() : std::runtime_error("tshark has ended or prints what is not a packet") {}
};

/// Records are sent and received in the same order, any number of them in between.
class tshark_session {
  public:
    /// Starts tshark, directly.
    /// @throws PLATFORM::process_not_started
    explicit tshark_session(const std::filesystem::path& tshark);

    /// Sends a record, as far as tshark takes it at once; the rest goes while waiting in `receive`.
    /// @param packet a block of a capture file, see `pcapng_packet`
    void send(const std::string& packet);

    /// What tshark prints for the oldest record that was sent and not received, as if it had been
    /// alone in its capture: an array with the packet, or without one where the filter dropped it.
    /// Waits for it without a limit, serving input and output together.
    /// @pre such a record was sent
    /// @throws session_broken; the session is of no use from then on
    std::string receive();

  private:
    void queue(const std::string& packet);
    std::optional<std::string> received(std::uint64_t number);
    void read_lookahead(std::uint64_t number);
    PLATFORM::piped_process::transfer exchange(std::span<char> buffer, bool wait);
    void wait();

    PLATFORM::piped_process process_;
    packet_splitter output_;
    std::string input_;
    /// How much of the input has been written.
    std::size_t written_ = 0;
    std::uint64_t packets_sent_ = 0;
    /// The numbers of the packets that stand for records which have not been received.
    std::deque<std::uint64_t> awaited_;
    /// The number of the last packet that was sent to mark an end.
    std::uint64_t last_marker_ = 0;
    /// The first packet that was printed and not received.
    std::optional<split_packet> lookahead_;
};

}  // namespace KIVRA::TSHARK::ANALYSIS
