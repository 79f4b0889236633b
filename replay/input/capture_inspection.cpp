#include "replay/input/capture_inspection.h"

#include <array>
#include <cstdio>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>

#include <pcap/pcap.h>

#include "replay/input/exported_pdu.h"
#include "replay/input/ip_signalling.h"
#include "replay/input/link_types.h"
#include "replay/record/record_format.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using packet_bytes = std::span<const std::uint8_t>;

/// What the packets seen so far say.
class verdict {
  public:
    explicit verdict(int link_type) : is_exported_(link_type == DLT_WIRESHARK_UPPER_PDU) {}

    void look_at(packet_bytes packet) {
        if (!is_exported_) {
            needs_tshark_ = needs_tshark_ || carries_signalling(packet);
        } else if (names_dissector_table(packet)) {
            needs_tshark_ = true;
        } else {
            look_at_name(packet);
        }
    }

    bool needs_tshark() const { return needs_tshark_ || (strange_ && !familiar_); }

  private:
    void look_at_name(packet_bytes packet) {
        try {
            const auto message = read_exported_pdu(packet);
            const bool is_familiar =
                is_analysed(message.dissector) || !nearest_analysed(message.dissector).empty();
            (is_familiar ? familiar_ : strange_) = true;
        } catch (const std::runtime_error&) {
            // The record says so when its turn comes.
        }
    }

    bool is_exported_;
    bool needs_tshark_ = false;
    /// There are packets of LTE's dissectors, or of other ones, which may have LTE inside.
    bool familiar_ = false;
    bool strange_ = false;
};

/// Whether libpcap gave up at an interface that is unlike the first one.
bool met_another_interface(pcap_t* capture) {
    return std::string_view(pcap_geterr(capture)).find("first interface") != std::string_view::npos;
}

}  // namespace

bool holds_records(PLATFORM::input_stream& stream) {
    std::FILE* file = stream.open();
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    const std::unique_ptr<pcap_t, decltype(&pcap_close)> capture(
        pcap_fopen_offline(file, reason.data()), pcap_close);
    if (capture == nullptr) {
        static_cast<void>(std::fclose(file));
        stream.rethrow();
        return false;
    }
    const int link_type = pcap_datalink(capture.get());
    const bool is_exported = link_type == DLT_WIRESHARK_UPPER_PDU;
    if (packet_reader_of(link_type) == nullptr || (!is_exported && !stream.is_regular_file())) {
        return false;
    }
    verdict found(link_type);
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    int result = 0;
    while ((result = pcap_next_ex(capture.get(), &header, &data)) == 1) {
        found.look_at({data, header->caplen});
        if (!stream.is_regular_file()) {
            break;
        }
    }
    stream.rethrow();
    return !found.needs_tshark() && (result != PCAP_ERROR || !met_another_interface(capture.get()));
}

}  // namespace KIVRA::TSHARK::REPLAY
