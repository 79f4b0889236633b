#include "replay/input/direct_capture.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

direct_capture::direct_capture(std::string name, std::unique_ptr<PLATFORM::input_stream> stream)
    : name_(std::move(name)), stream_(std::move(stream)) {
    read_head();
    const int link_type = pcap_datalink(handle_.get());
    read_packet_ = packet_reader_of(link_type);
    if (read_packet_ == nullptr) {
        throw capture_error(name_, "no packets of link type " + std::to_string(link_type) +
                                       " can be read directly");
    }
}

void direct_capture::read_head() {
    std::FILE* stream = stream_->open();
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    handle_.reset(pcap_fopen_offline(stream, reason.data()));
    if (handle_ == nullptr) {
        static_cast<void>(std::fclose(stream));
        stream_->rethrow();
        throw capture_error(name_, reason.data());
    }
}

std::optional<trace_record> direct_capture::next() {
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int result = pcap_next_ex(handle_.get(), &header, &data);
    stream_->rethrow();
    if (result == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    if (result != 1) {
        throw capture_error(name_, pcap_geterr(handle_.get()));
    }

    ++packets_;
    trace_record record;
    record.timestamp = static_cast<std::uint64_t>(header->ts.tv_sec) * 1'000'000 +
                       static_cast<std::uint64_t>(header->ts.tv_usec);
    record.payload = {data, header->caplen};
    try {
        auto message = read_packet_(record.payload);
        record.format = std::move(message.dissector);
        record.payload = message.bytes;
    } catch (const std::runtime_error& error) {
        record.failure = {failure_kind::malformed_packet, error.what()};
    }
    if (header->caplen < header->len) {
        record.failure = {failure_kind::truncated_packet,
                          "cut short by the snapshot length: " + std::to_string(header->caplen) +
                              " of " + std::to_string(header->len) + " bytes captured"};
    }
    return record;
}

}  // namespace KIVRA::TSHARK::REPLAY
