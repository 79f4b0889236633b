/// Captures read record by record: pcap and pcapng files with exported PDUs (link type 252) or raw
/// IP packets (link types 101, 228 and 229). One packet is in memory at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <pcap/pcap.h>

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
    /// @throws std::runtime_error when that fails, or the link type is none of the above
    explicit capture(std::filesystem::path file);

    const std::filesystem::path& file() const { return file_; }

    /// The next packet; nothing at the end of the file.
    /// @throws std::runtime_error when the file can't be read on
    std::optional<record> next();

    /// The file's size in bytes; 0 where it has none, as a pipe.
    std::uint64_t size() const;

    /// How many bytes have been read; 0 where that can't be told.
    std::uint64_t position() const;

  private:
    struct closer {
        void operator()(pcap_t* handle) const { pcap_close(handle); }
    };

    std::filesystem::path file_;
    std::unique_ptr<pcap_t, closer> handle_;
    bool holds_ip_packets_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
