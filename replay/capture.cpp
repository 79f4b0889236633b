#include "replay/capture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "replay/exported_pdu.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::array<int, 3> ip_link_types{DLT_RAW, DLT_IPV4, DLT_IPV6};

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error("can't read " + file.string() + ": " + reason);
}

pcap_t* open(const std::filesystem::path& file) {
    std::FILE* stream = std::fopen(file.c_str(), "rb");
    if (stream == nullptr) {
        fail(file, std::generic_category().message(errno));
    }
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    pcap_t* handle = pcap_fopen_offline(stream, reason.data());
    if (handle == nullptr) {
        static_cast<void>(std::fclose(stream));
        fail(file, reason.data());
    }
    return handle;
}

std::string link_type_name(int link_type) {
    const char* name = pcap_datalink_val_to_name(link_type);
    return name == nullptr ? std::to_string(link_type) : name;
}

}  // namespace

capture::capture(std::filesystem::path file) : file_(std::move(file)), handle_(open(file_)) {
    const int link_type = pcap_datalink(handle_.get());
    holds_ip_packets_ = std::ranges::find(ip_link_types, link_type) != ip_link_types.end();
    if (!holds_ip_packets_ && link_type != DLT_WIRESHARK_UPPER_PDU) {
        fail(file_, "unsupported link type " + link_type_name(link_type) +
                        " (exported PDUs and raw IP packets are supported)");
    }
}

std::optional<record> capture::next() {
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int result = pcap_next_ex(handle_.get(), &header, &data);
    if (result == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    if (result != 1) {
        fail(file_, pcap_geterr(handle_.get()));
    }

    record packet;
    packet.timestamp = static_cast<std::uint64_t>(header->ts.tv_sec) * 1'000'000 +
                       static_cast<std::uint64_t>(header->ts.tv_usec);
    packet.payload = {data, header->caplen};
    try {
        if (holds_ip_packets_) {
            packet.format = "ip";
        } else {
            auto pdu = read_exported_pdu(packet.payload);
            packet.format = std::move(pdu.dissector);
            packet.payload = pdu.message;
        }
    } catch (const std::runtime_error& error) {
        packet.failure = error.what();
    }
    if (header->caplen < header->len) {
        packet.failure = "cut short by the snapshot length: " + std::to_string(header->caplen) +
                         " of " + std::to_string(header->len) + " bytes captured";
    }
    return packet;
}

std::uint64_t capture::size() const {
    std::error_code no_regular_file;
    const auto size = std::filesystem::file_size(file_, no_regular_file);
    return no_regular_file ? 0 : size;
}

std::uint64_t capture::position() const {
    const auto position = ftello(pcap_file(handle_.get()));
    return position < 0 ? 0 : static_cast<std::uint64_t>(position);
}

}  // namespace KIVRA::TSHARK::REPLAY
