#include "replay/input/capture.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

[[noreturn]] void fail(const std::string& name, const std::string& reason) {
    throw capture_error("can't read " + name + ": " + reason);
}

bool is_standard_input(const std::filesystem::path& file) {
    return file == "-";
}

std::string name_of(const std::filesystem::path& file) {
    return is_standard_input(file) ? "standard input" : file.string();
}

std::string link_type_name(int link_type) {
    const char* name = pcap_datalink_val_to_name(link_type);
    return name == nullptr ? std::to_string(link_type) : name;
}

}  // namespace

capture::capture(const std::filesystem::path& file, std::function<void()> before_waiting)
    : name_(name_of(file)) {
    try {
        stream_ = std::make_unique<PLATFORM::input_stream>(is_standard_input(file) ? "" : file,
                                                           std::move(before_waiting));
        read_head();
    } catch (const std::system_error& error) {
        fail(name_, error.code().message());
    }
    const int link_type = pcap_datalink(handle_.get());
    read_packet_ = packet_reader_of(link_type);
    if (read_packet_ == nullptr) {
        fail(name_, "unsupported link type " + link_type_name(link_type) +
                        " (exported PDUs and raw IP packets are supported)");
    }
}

void capture::read_head() {
    std::FILE* stream = stream_->open();
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    handle_.reset(pcap_fopen_offline(stream, reason.data()));
    if (handle_ == nullptr) {
        static_cast<void>(std::fclose(stream));
        stream_->rethrow();
        fail(name_, reason.data());
    }
}

std::optional<trace_record> capture::next() {
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int result = pcap_next_ex(handle_.get(), &header, &data);
    stream_->rethrow();
    if (result == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    if (result != 1) {
        fail(name_, pcap_geterr(handle_.get()));
    }

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
