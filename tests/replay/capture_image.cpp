#include "tests/replay/capture_image.h"

#include <cstddef>

namespace KIVRA::TSHARK::TESTING {

namespace {

class image_writer {
  public:
    explicit image_writer(bool big_endian) : big_endian_(big_endian) {}

    image_writer& number(std::uint64_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i) {
            const std::size_t place = big_endian_ ? width - 1 - i : i;
            image_ += static_cast<char>(value >> (8 * place) & 0xffU);
        }
        return *this;
    }
    image_writer& bytes(std::string_view data) {
        image_ += data;
        return *this;
    }
    image_writer& pad() {
        image_.append((4 - image_.size() % 4) % 4, '\0');
        return *this;
    }
    const std::string& image() const { return image_; }

  private:
    bool big_endian_;
    std::string image_;
};

std::uint32_t length_of(std::string_view data) {
    return static_cast<std::uint32_t>(data.size());
}

std::string pcap_image(std::uint32_t link_type, const std::vector<image_packet>& packets,
                       const image_format& format) {
    image_writer file(format.big_endian);
    file.number(format.nanoseconds ? 0xa1b23c4d : 0xa1b2c3d4, 4).number(2, 2).number(4, 2);
    file.number(0, 4).number(0, 4).number(65535, 4).number(link_type, 4);
    for (const auto& packet : packets) {
        const auto fraction = packet.timestamp % 1'000'000 * (format.nanoseconds ? 1000 : 1);
        file.number(packet.timestamp / 1'000'000, 4).number(fraction, 4);
        file.number(packet.data.size(), 4);
        file.number(packet.original_length.value_or(length_of(packet.data)), 4);
        file.bytes(packet.data);
    }
    return file.image();
}

std::string block(std::uint32_t type, const image_writer& body, bool big_endian) {
    const auto length = length_of(body.image()) + 12;
    image_writer whole(big_endian);
    whole.number(type, 4).number(length, 4).bytes(body.image()).number(length, 4);
    return whole.image();
}

std::string pcapng_image(std::uint32_t link_type, const std::vector<image_packet>& packets,
                         const image_format& format) {
    image_writer section(format.big_endian);
    section.number(0x1a2b3c4d, 4).number(1, 2).number(0, 2).number(~0ULL, 8);

    image_writer interface(format.big_endian);
    interface.number(link_type, 2).number(0, 2).number(0, 4);
    if (format.nanoseconds) {
        interface.number(9, 2).number(1, 2).number(9, 1).pad().number(0, 4);
    }

    std::string file =
        block(0x0a0d0d0a, section, format.big_endian) + block(1, interface, format.big_endian);
    for (const auto& packet : packets) {
        const auto timestamp = packet.timestamp * (format.nanoseconds ? 1000 : 1);
        image_writer body(format.big_endian);
        body.number(0, 4).number(timestamp >> 32U, 4).number(timestamp & 0xffffffffU, 4);
        body.number(packet.data.size(), 4);
        body.number(packet.original_length.value_or(length_of(packet.data)), 4);
        body.bytes(packet.data).pad();
        file += block(6, body, format.big_endian);
    }
    return file;
}

}  // namespace

std::string capture_image(std::uint32_t link_type, const std::vector<image_packet>& packets,
                          const image_format& format) {
    return format.pcapng ? pcapng_image(link_type, packets, format)
                         : pcap_image(link_type, packets, format);
}

std::string pdu_tag(unsigned type, std::string_view value) {
    return image_writer(true).number(type, 2).number(value.size(), 2).bytes(value).image();
}

std::string dissector_name_tag(std::string_view name) {
    return pdu_tag(12, image_writer(true).bytes(name).pad().image());
}

std::string end_of_tags() {
    return pdu_tag(0, "");
}

std::string exported_pdu_image(std::string_view dissector, std::string_view message) {
    return dissector_name_tag(dissector) + end_of_tags() + std::string(message);
}

std::string router_advertisement() {
    std::string packet(104, '\0');
    packet[0] = 0x60;
    packet[5] = 64;  // payload length
    packet[6] = 58;  // ICMPv6
    packet[7] = '\xff';
    packet[40] = '\x86';  // router advertisement
    packet[56] = 3;       // prefix information
    packet[57] = 4;
    packet[58] = 64;
    packet.replace(72, 6, std::string_view("\x20\x01\x0d\xb8\x00\x01", 6));
    return packet;
}

}  // namespace KIVRA::TSHARK::TESTING
