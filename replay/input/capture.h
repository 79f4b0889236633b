/// Captures read record by record: pcap and pcapng files whose link type
/// `packet_reader_of` knows. One packet is in memory at a time.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <pcap/pcap.h>

#include "replay/input/link_types.h"
#include "replay/input/working_file.h"
#include "replay/record/record.h"

namespace KIVRA::TSHARK::REPLAY {

class capture {
  public:
    /// Opens the file and reads its head.
    /// @param file "-" for the standard input
    /// @throws std::runtime_error when that fails, or the link type has no reader
    explicit capture(const std::filesystem::path& file);

    /// The same, from a copy of the file.
    capture(const std::filesystem::path& file, const working_file& copy);

    /// What messages call it.
    const std::string& name() const { return name_; }

    /// The next record; nothing at the end of the file.
    /// @throws std::runtime_error when the file can't be read on
    std::optional<trace_record> next();

    /// The size in bytes; 0 where there is none, as of a pipe.
    std::uint64_t size() const;

    /// How many bytes have been read; 0 where that can't be told.
    std::uint64_t position() const;

  private:
    struct closer {
        void operator()(pcap_t* handle) const { pcap_close(handle); }
    };

    /// @param stream null when opening failed
    capture(std::string name, std::FILE* stream);

    std::string name_;
    std::unique_ptr<pcap_t, closer> handle_;
    packet_reader* read_packet_ = nullptr;
};

/// A copy of a capture as it is now, to be read more than once: the standard input or a pipe can't
/// be, and a file may grow meanwhile.
/// @throws std::runtime_error when it can't be read, or the copy can't be written
working_file copy_of_capture(const std::filesystem::path& file);

}  // namespace KIVRA::TSHARK::REPLAY
