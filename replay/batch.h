/// Runs the records of a whole stream through one tshark, with the outcome that the plug-in has
/// record by record. The rules are the plug-in's own; only the ways to tshark and back differ.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "context/sink_context.h"
#include "replay/capture_stream.h"
#include "replay/packet_splitter.h"
#include "replay/record_runner.h"
#include "replay/tshark_output.h"
#include "replay/working_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// The records of a stream that tshark is to read, as one capture.
class batch_capture {
  public:
    /// Reads the stream to its end, or to an interruption.
    /// @throws std::runtime_error when the capture can't be written
    explicit batch_capture(capture_stream records);

    std::filesystem::path path() const { return file_.path(); }

  private:
    void add(const record& packet);

    working_file file_;
};

/// Takes the records of the stream, in order and from the first one on.
class batch final : public record_runner {
  public:
    /// @param capture of the same records; outlives the object
    /// @throws std::runtime_error when there is no tshark in the directory, or no way to run it
    batch(const batch_capture& capture, const std::filesystem::path& tshark_directory,
          const std::filesystem::path& profile);

    void complete() override {}

  private:
    std::optional<std::string> run_chunk(const kivra_trace_chunk& chunk) override;
    void analyse(const kivra_trace_chunk& chunk);
    std::optional<std::string> output_of(std::uint64_t frame);

    sink_context context_;
    tshark_output output_;
    packet_splitter packets_;
    /// The first packet that has not been asked for.
    std::optional<split_packet> ahead_;
    std::uint64_t frame_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
