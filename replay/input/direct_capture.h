/// Captures whose packets are records as they stand: pcap and pcapng files, or pipes that give one,
/// of exported PDUs or raw IP packets. One packet is in memory at a time.
#pragma once

#include <memory>
#include <string>

#include <pcap/pcap.h>

#include "platform/console/c_stream.h"
#include "platform/console/input_stream.h"
#include "replay/input/capture.h"
#include "replay/input/link_types.h"

namespace KIVRA::TSHARK::REPLAY {

class direct_capture final : public capture {
  public:
    /// Reads the head.
    /// @param name what messages call the capture
    /// @throws capture_error when that fails, or the link type has no reader
    direct_capture(std::string name, std::unique_ptr<PLATFORM::input_stream> stream);

    std::optional<trace_record> next() override;
    capture_content content() const override { return {.packets = packets_}; }
    std::uint64_t size() const override { return stream_->size(); }
    std::uint64_t position() const override { return stream_->position(); }

  private:
    struct closer {
        void operator()(pcap_t* handle) const { pcap_close(handle); }
    };

    void read_head();
    void rethrow();

    std::string name_;
    std::unique_ptr<PLATFORM::input_stream> stream_;
    PLATFORM::c_stream c_stream_{*stream_};
    std::unique_ptr<pcap_t, closer> handle_;
    const link_type* type_ = nullptr;
    std::uint64_t packets_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
