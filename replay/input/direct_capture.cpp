#include "replay/input/direct_capture.h"

#include <array>
#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/console/console.h"

namespace KIVRA::TSHARK::REPLAY {

direct_capture::direct_capture(std::string name, std::unique_ptr<PLATFORM::input_stream> stream)
    : name_(std::move(name)), stream_(std::move(stream)) {
    read_head();
    const int number = pcap_datalink(handle_.get());
    type_ = link_type_of_dlt(number);
    if (type_ == nullptr) {
        throw capture_error(
            name_, "no packets of link type " + std::to_string(number) + " can be read directly");
    }
}

void direct_capture::read_head() {
    std::FILE* stream = c_stream_.open();
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    handle_.reset(pcap_fopen_offline(stream, reason.data()));
    if (handle_ == nullptr) {
        static_cast<void>(std::fclose(stream));
        rethrow();
        throw capture_error(name_, reason.data());
    }
}

std::optional<trace_record> direct_capture::next() {
    // A file can be read again; what came from a pipe is still given.
    if (PLATFORM::interrupted() && stream_->is_regular_file()) {
        return std::nullopt;
    }
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int result = pcap_next_ex(handle_.get(), &header, &data);
    rethrow();
    if (result == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    if (result != 1) {
        throw capture_error(name_, pcap_geterr(handle_.get()));
    }
    ++packets_;
    const auto timestamp = static_cast<std::uint64_t>(header->ts.tv_sec) * 1'000'000 +
                           static_cast<std::uint64_t>(header->ts.tv_usec);
    return record_of(*type_, timestamp, {data, header->caplen}, header->len);
}

/// What libpcap must not see.
void direct_capture::rethrow() {
    try {
        c_stream_.rethrow();
    } catch (const std::system_error& error) {
        throw capture_error(name_, error.code().message());
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
