/// A record through the image builder, and back through a reader and, now and then, through
/// libpcap.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <pcap/pcap.h>

#include "analysis/tshark/pcapng_image.h"
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

/// An image, taken apart from its beginning.
class image_reader {
  public:
    explicit image_reader(std::string_view image) : rest_(image) {}

    std::string_view bytes(std::size_t count) {
        require(count <= rest_.size());
        const auto taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

    std::uint64_t little_endian(std::size_t size) {
        std::uint64_t value = 0;
        std::size_t place = 0;
        for (const char byte : bytes(size)) {
            value |= std::uint64_t{static_cast<std::uint8_t>(byte)} << (8 * place++);
        }
        return value;
    }

    std::uint64_t big_endian_16() {
        const auto pair = bytes(2);
        return std::uint64_t{static_cast<std::uint8_t>(pair[0])} << 8U |
               static_cast<std::uint8_t>(pair[1]);
    }

    /// The body of a block of this type, without its options' end.
    image_reader block(std::uint64_t type) {
        require(little_endian(4) == type);
        const std::uint64_t length = little_endian(4);
        require(length % 4 == 0 && length >= 16);
        const image_reader body(bytes(static_cast<std::size_t>(length) - 16));
        require(little_endian(4) == 0);
        require(little_endian(4) == length);
        return body;
    }

    void zeros(std::size_t count) {
        require(bytes(count).find_first_not_of('\0') == std::string_view::npos);
    }

    std::size_t size() const { return rest_.size(); }

  private:
    std::string_view rest_;
};

std::size_t padding_of(std::size_t size) {
    return (4 - size % 4) % 4;
}

void check_exported_pdu(image_reader pdu, const record& made) {
    const std::size_t padding = padding_of(made.format.size());
    require(pdu.big_endian_16() == 12);
    require(pdu.big_endian_16() == made.format.size() + padding);
    require(pdu.bytes(made.format.size()) == made.format);
    pdu.zeros(padding + 4);
    require(std::ranges::equal(pdu.bytes(pdu.size()), made.payload, [](char a, std::uint8_t b) {
        return static_cast<std::uint8_t>(a) == b;
    }));
}

void check_image(std::string_view whole, const record& made) {
    image_reader image(whole);
    image_reader section = image.block(0x0A0D0D0A);
    require(section.little_endian(4) == 0x1A2B3C4D);
    require(section.little_endian(2) == 1 && section.little_endian(2) == 0);
    require(section.little_endian(8) == std::numeric_limits<std::uint64_t>::max());
    image_reader interface = image.block(1);
    require(interface.little_endian(2) == wireshark_upper_pdu);
    image_reader packet = image.block(6);
    require(image.size() == 0);
    packet.zeros(4);
    require(packet.little_endian(4) == made.timestamp >> 32U);
    require(packet.little_endian(4) == (made.timestamp & 0xFFFFFFFF));
    const auto length = static_cast<std::size_t>(packet.little_endian(4));
    require(packet.little_endian(4) == length);
    check_exported_pdu(image_reader(packet.bytes(length)), made);
    packet.zeros(padding_of(length));
    require(packet.size() == 0);
}

/// The same as somebody else reads it, which takes long.
void check_by_libpcap(std::string& image, const record& made) {
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
    require(header->len == header->caplen);
    check_exported_pdu(
        image_reader({reinterpret_cast<const char*>(bytes), std::size_t{header->caplen}}), made);
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
    check_image(image, made);
    // Where an input has no bytes left for the time, it is 0.
    if (made.timestamp % 256 == 1) {
        check_by_libpcap(image, made);
    }
    return 0;
}
