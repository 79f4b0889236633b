/// Captures read record by record: pcap and pcapng files with exported PDUs (link type 252) or raw
/// IP packets (link types 101, 228 and 229). One packet is in memory at a time.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <pcap/pcap.h>

#include "replay/working_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// A packet of a capture.
struct record {
    /// Microseconds since 1970-01-01.
    std::uint64_t timestamp = 0;
    /// The dissector's name, "ip" for an IP packet; empty when the packet names none.
    std::string format = {};
    /// The message; the capture's, until the next packet is read.
    std::span<const std::uint8_t> payload = {};
    /// Why the packet can't be run, when it can't.
    std::optional<std::string> failure = {};
};

class capture {
  public:
    /// Opens the file and reads its head.
    /// @param file "-" for the standard input
    /// @throws std::runtime_error when that fails, or the link type is none of the above
    explicit capture(const std::filesystem::path& file);

    /// The same, from a copy of the file.
    capture(const std::filesystem::path& file, const working_file& copy);

    /// What messages call it.
    const std::string& name() const { return name_; }

    /// The next packet; nothing at the end of the file.
    /// @throws std::runtime_error when the file can't be read on
    std::optional<record> next();

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
    bool holds_ip_packets_ = false;
};

/// A copy of a capture as it is now, to be read more than once: the standard input or a pipe can't
/// be, and a file may grow meanwhile.
/// @throws std::runtime_error when it can't be read, or the copy can't be written
working_file copy_of_capture(const std::filesystem::path& file);

}  // namespace KIVRA::TSHARK::REPLAY
