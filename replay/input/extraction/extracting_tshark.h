/// A tshark that reads a whole capture, packet by packet.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "analysis/tshark/packet_splitter.h"
#include "platform/console/input_stream.h"
#include "platform/piped_process.h"
#include "replay/input/extraction/capture_source.h"
#include "replay/input/extraction/extraction_arguments.h"
#include "replay/record/capture_content.h"

namespace KIVRA::TSHARK::REPLAY {

/// What `extracting_tshark::read` has come to.
enum class extraction_state { packet, idle, ended };

class extracting_tshark {
  public:
    /// @param source outlives the object; its stream is fed to tshark where there is no file
    /// @throws capture_error when tshark can't be started
    extracting_tshark(const capture_source& source, extraction_depth depth);

    /// Reads on to the next packet, the end of the capture, or until nothing has come for the given
    /// time, if any, and the stream gives nothing either.
    /// @param packet the text that tshark prints for a capture with this packet alone
    /// @throws capture_error when tshark fails, with what it says, and when the run is interrupted
    ///     while a file is being read
    extraction_state read(std::string& packet,
                          std::optional<std::chrono::milliseconds> patience = std::nullopt);

    /// What tshark has counted; whole at the end.
    capture_content content() const;

  private:
    extraction_state finish();
    bool move();
    void wait();
    void take_input();
    bool awaits_input() const;

    std::string name_;
    /// What is fed to tshark; null where it reads a file.
    PLATFORM::input_stream* input_;
    bool is_file_;
    PLATFORM::piped_process process_;
    ANALYSIS::packet_splitter output_{ANALYSIS::behind_packets::text};
    /// Input that is not with tshark yet.
    std::string unsent_;
    /// What tshark prints behind the packets.
    std::string statistics_;
    bool ended_ = false;
    bool input_closed_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
