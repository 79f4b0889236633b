/// Captures read record by record: pcap and pcapng files, or pipes that give one, whose link type
/// `packet_reader_of` knows. One packet is in memory at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include <pcap/pcap.h>

#include "platform/console/input_stream.h"
#include "replay/input/link_types.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

/// A capture can't be opened or read on.
class capture_error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class capture {
  public:
    /// Opens the file and reads its head.
    /// @param file "-" for the standard input
    /// @param before_waiting called each time when nothing more can be read at once; may be none
    /// @throws capture_error when that fails, or the link type has no reader
    explicit capture(const std::filesystem::path& file, std::function<void()> before_waiting = {});

    /// What messages call it.
    const std::string& name() const { return name_; }

    /// The next record; nothing at the end of the file.
    /// @throws capture_error when the file can't be read on, and what `before_waiting` throws
    std::optional<trace_record> next();

    /// The size in bytes; 0 where there is none, as of a pipe.
    std::uint64_t size() const { return stream_->size(); }

    /// How many bytes have been read, some of them ahead.
    std::uint64_t position() const { return stream_->position(); }

  private:
    struct closer {
        void operator()(pcap_t* handle) const { pcap_close(handle); }
    };

    void read_head();

    std::string name_;
    std::unique_ptr<PLATFORM::input_stream> stream_;
    std::unique_ptr<pcap_t, closer> handle_;
    packet_reader* read_packet_ = nullptr;
};

}  // namespace KIVRA::TSHARK::REPLAY
