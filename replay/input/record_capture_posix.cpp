#include <array>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include <pcap/pcap.h>

#include "platform/console/c_stream.h"
#include "replay/input/direct_capture.h"
#include "replay/input/packet_verdict.h"
#include "replay/input/printed_capture.h"
#include "replay/input/record_capture.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// Whether libpcap gave up at an interface that is unlike the first one.
bool met_another_interface(pcap_t* capture) {
    return std::string_view(pcap_geterr(capture)).find("first interface") != std::string_view::npos;
}

enum class reader { libpcap, printing_tshark, extracting_tshark };

/// @throws what the stream throws
reader reader_of(const capture_source& source) {
    PLATFORM::c_stream stream(*source.stream);
    std::FILE* file = stream.open();
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    const std::unique_ptr<pcap_t, decltype(&pcap_close)> capture(
        pcap_fopen_offline(file, reason.data()), pcap_close);
    const bool is_file = source.stream->is_regular_file();
    if (capture == nullptr) {
        static_cast<void>(std::fclose(file));
        stream.rethrow();
        // It may be compressed, or of a format that Wireshark alone knows.
        const bool are_records =
            !source.file.empty() && packets_are_records(source).value_or(false);
        return are_records ? reader::printing_tshark : reader::extracting_tshark;
    }
    const auto* const type = link_type_of_dlt(pcap_datalink(capture.get()));
    if (type == nullptr || (!is_exported_pdu(*type) && !is_file)) {
        return reader::extracting_tshark;
    }
    packet_verdict verdict;
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    int result = 0;
    while ((result = pcap_next_ex(capture.get(), &header, &data)) == 1) {
        verdict.look_at(*type, {data, header->caplen});
        if (!is_file) {
            break;
        }
    }
    stream.rethrow();
    const bool are_records =
        verdict.are_records() && (result != PCAP_ERROR || !met_another_interface(capture.get()));
    return are_records ? reader::libpcap : reader::extracting_tshark;
}

}  // namespace

std::unique_ptr<capture> open_records(capture_source& source) {
    const auto chosen = reader_of(source);
    source.stream->rewind();
    switch (chosen) {
        case reader::libpcap:
            return std::make_unique<direct_capture>(std::move(source.name),
                                                    std::move(source.stream));
        case reader::printing_tshark:
            return std::make_unique<printed_capture>(std::move(source));
        case reader::extracting_tshark:
            break;
    }
    return nullptr;
}

}  // namespace KIVRA::TSHARK::REPLAY
