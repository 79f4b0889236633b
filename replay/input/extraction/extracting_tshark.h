/// A tshark that reads a whole capture, packet by packet.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>

#include "analysis/tshark/packet_splitter.h"
#include "platform/console/input_stream.h"
#include "platform/piped_process.h"
#include "replay/input/extraction/extracted_packet.h"
#include "replay/input/extraction/extraction_arguments.h"
#include "replay/record/capture_content.h"

namespace KIVRA::TSHARK::REPLAY {

/// What `extracting_tshark::read` has come to.
enum class extraction_state { packet, idle, ended };

class extracting_tshark {
  public:
    /// @param name what messages call the capture
    /// @param file the capture; the empty path for one that `input` gives
    /// @param input what tshark gets through its standard input; null for a file
    /// @throws capture_error when tshark can't be started
    extracting_tshark(std::string name, const std::filesystem::path& tshark,
                      const std::filesystem::path& file, PLATFORM::input_stream* input,
                      extraction_depth depth, const extraction_options& options);

    /// Reads on to the next packet, the end of the capture, or until nothing has come for the given
    /// time and the input gives nothing either, which can be so with an input only.
    /// @throws capture_error when tshark fails, with what it says, and when the run is interrupted
    extraction_state read(extracted_packet& packet, std::chrono::milliseconds patience);

    /// What tshark has counted; whole at the end.
    capture_content content() const;

  private:
    extraction_state finish();
    bool move();
    void wait();
    void take_input();
    bool awaits_input() const;

    std::string name_;
    PLATFORM::input_stream* input_;
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
