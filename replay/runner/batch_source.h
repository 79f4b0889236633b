/// The dissections of a whole stream of records by one tshark, which reads them from one capture.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "analysis/dissection_source.h"
#include "replay/input/capture_stream.h"
#include "replay/input/working_file.h"
#include "replay/runner/packet_splitter.h"
#include "replay/runner/tshark_output.h"

namespace KIVRA::TSHARK::REPLAY {

/// The records of a stream that tshark is to read, as one capture.
class batch_capture {
  public:
    /// Reads the stream to its end, or to an interruption.
    /// @throws std::runtime_error when the capture can't be written
    explicit batch_capture(capture_stream records);

    std::filesystem::path path() const { return file_.path(); }

  private:
    void add(const trace_record& record);

    working_file file_;
};

/// Gives the dissections of the records of the capture, in order and from the first one on.
class batch_source final : public ANALYSIS::dissection_source {
  public:
    /// @param tshark the executable
    /// @param records the stream of the records that will be run
    batch_source(const std::filesystem::path& tshark, capture_stream records)
        : capture_(std::move(records)),
          output_(tshark, capture_.path()),
          packets_([this](std::span<char> buffer) { return output_.read(buffer); }) {}

    void dissect(const sink_context& context, const std::string& packet,
                 const ANALYSIS::output_handler& handler) override;

  private:
    batch_capture capture_;
    tshark_output output_;
    packet_splitter packets_;
    /// The first packet that has not been asked for.
    std::optional<split_packet> lookahead_;
    std::uint64_t frame_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
