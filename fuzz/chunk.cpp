/// A record through the image builder, and back through libpcap.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

#include <pcap/pcap.h>

#include "analysis/pcapng_image.h"
#include "fuzz/require.h"

namespace {

using namespace KIVRA::TSHARK;
using FUZZ::require;

constexpr std::size_t longest_format = 65'532;
constexpr int wireshark_upper_pdu = 252;
constexpr std::uint64_t microseconds = 1'000'000;

struct record {
    std::uint64_t timestamp;
    std::string format;
    std::vector<std::uint8_t> payload;
};

record make_record(FuzzedDataProvider& input) {
    record made{input.ConsumeIntegral<std::uint64_t>(), input.ConsumeRandomLengthString(), {}};
    // Few inputs reach the length at which a name gets too long.
    if (input.ConsumeIntegral<std::uint8_t>() == 0) {
        made.format.resize(
            input.ConsumeIntegralInRange<std::size_t>(longest_format - 8, longest_format + 8), 'x');
    }
    made.payload = input.ConsumeRemainingBytes<std::uint8_t>();
    return made;
}

/// The exported PDU that a record should become.
std::string expected_pdu(const record& made) {
    const std::size_t tag_length = (made.format.size() + 3) / 4 * 4;
    std::string pdu{'\0', '\x0C', static_cast<char>(tag_length >> 8),
                    static_cast<char>(tag_length & 0xFF)};
    pdu += made.format;
    pdu.append(tag_length - made.format.size() + 4, '\0');
    pdu.append(made.payload.begin(), made.payload.end());
    return pdu;
}

void check_capture(std::string& image, const record& made) {
    std::FILE* file = fmemopen(image.data(), image.size(), "rb");
    require(file != nullptr);
    std::string error(PCAP_ERRBUF_SIZE, '\0');
    const std::unique_ptr<pcap_t, decltype(&pcap_close)> capture(
        pcap_fopen_offline(file, error.data()), pcap_close);
    require(capture != nullptr);
    require(pcap_datalink(capture.get()) == wireshark_upper_pdu);

    pcap_pkthdr* header = nullptr;
    const std::uint8_t* bytes = nullptr;
    require(pcap_next_ex(capture.get(), &header, &bytes) == 1);
    const std::string pdu = expected_pdu(made);
    require(header->caplen == pdu.size() && header->len == pdu.size());
    require(pdu == std::string(reinterpret_cast<const char*>(bytes), header->caplen));
    require(static_cast<std::uint64_t>(header->ts.tv_sec) == made.timestamp / microseconds);
    require(static_cast<std::uint64_t>(header->ts.tv_usec) == made.timestamp % microseconds);
    require(pcap_next_ex(capture.get(), &header, &bytes) == PCAP_ERROR_BREAK);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const record made = make_record(input);
    std::string image;
    try {
        image = ANALYSIS::pcapng_head() +
                ANALYSIS::pcapng_packet(made.format, made.payload, made.timestamp);
    } catch (const std::length_error&) {
        require(made.format.size() > longest_format);
        return 0;
    }
    require(made.format.size() <= longest_format);
    check_capture(image, made);
    return 0;
}
