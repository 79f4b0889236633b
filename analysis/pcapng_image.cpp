#include "analysis/pcapng_image.h"

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

/// pcapng blocks and exported-PDU tags end on a multiple of this.
constexpr std::size_t alignment = 4;
constexpr std::uint32_t section_header_length = 32;
constexpr std::uint32_t interface_description_length = 40;
/// An enhanced packet block without its packet.
constexpr std::uint32_t packet_block_overhead = 36;
/// Two tag headers: that of the dissector name and that of the end tag.
constexpr std::size_t exported_pdu_overhead = 8;
/// The tag length that a dissector name may have at most, a 16-bit multiple of 4.
constexpr std::size_t longest_tag = 65'532;

constexpr std::uint16_t wireshark_upper_pdu = 252;
constexpr std::uint16_t interface_description_option = 3;
constexpr std::string_view interface_description = "Serialport";
constexpr std::uint16_t dissector_name_tag = 12;

constexpr std::size_t padding_of(std::size_t length) {
    return (alignment - length % alignment) % alignment;
}

class image_writer {
  public:
    explicit image_writer(std::size_t capacity) { bytes_.reserve(capacity); }

    template <typename Integer>
    void little_endian(Integer value) {
        for (std::size_t byte = 0; byte < sizeof(Integer); ++byte) {
            bytes_ += static_cast<char>((value >> (8 * byte)) & 0xFF);
        }
    }

    void big_endian(std::uint16_t value) {
        bytes_ += static_cast<char>(value >> 8);
        bytes_ += static_cast<char>(value & 0xFF);
    }

    void text(std::string_view value) { bytes_ += value; }
    void payload(std::span<const std::uint8_t> value) { bytes_.append(value.begin(), value.end()); }
    void zeros(std::size_t count) { bytes_.append(count, '\0'); }
    void end_of_options() { zeros(4); }

    std::string take() && { return std::move(bytes_); }

  private:
    std::string bytes_;
};

void write_section_header(image_writer& image) {
    image.little_endian<std::uint32_t>(0x0A0D0D0A);
    image.little_endian(section_header_length);
    image.little_endian<std::uint32_t>(0x1A2B3C4D);
    image.little_endian<std::uint16_t>(1);
    image.little_endian<std::uint16_t>(0);
    image.little_endian(std::numeric_limits<std::uint64_t>::max());
    image.end_of_options();
    image.little_endian(section_header_length);
}

void write_interface_description(image_writer& image) {
    image.little_endian<std::uint32_t>(1);
    image.little_endian(interface_description_length);
    image.little_endian(wireshark_upper_pdu);
    image.little_endian<std::uint16_t>(0);
    image.little_endian(std::numeric_limits<std::uint32_t>::max());
    image.little_endian(interface_description_option);
    image.little_endian(static_cast<std::uint16_t>(interface_description.size()));
    image.text(interface_description);
    image.zeros(padding_of(interface_description.size()));
    image.end_of_options();
    image.little_endian(interface_description_length);
}

void write_exported_pdu(image_writer& image, std::string_view format,
                        std::span<const std::uint8_t> payload) {
    image.big_endian(dissector_name_tag);
    image.big_endian(static_cast<std::uint16_t>(format.size() + padding_of(format.size())));
    image.text(format);
    image.zeros(padding_of(format.size()));
    image.big_endian(0);
    image.big_endian(0);
    image.payload(payload);
}

}  // namespace

std::string pcapng_head() {
    image_writer image(section_header_length + interface_description_length);
    write_section_header(image);
    write_interface_description(image);
    return std::move(image).take();
}

std::string pcapng_packet(std::string_view format, std::span<const std::uint8_t> payload,
                          std::uint64_t timestamp) {
    if (format.size() > longest_tag) {
        throw std::length_error("format of a record is longer than 65532 bytes");
    }
    const std::size_t pdu_length =
        exported_pdu_overhead + format.size() + padding_of(format.size()) + payload.size();
    const std::size_t packet_length = pdu_length + padding_of(pdu_length) + packet_block_overhead;
    if (packet_length > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("record is too long for a capture file");
    }
    const auto block_length = static_cast<std::uint32_t>(packet_length);
    const auto captured_length = static_cast<std::uint32_t>(pdu_length);

    image_writer image(packet_length);
    image.little_endian<std::uint32_t>(6);
    image.little_endian(block_length);
    image.little_endian<std::uint32_t>(0);
    image.little_endian(static_cast<std::uint32_t>(timestamp >> 32));
    image.little_endian(static_cast<std::uint32_t>(timestamp));
    image.little_endian(captured_length);
    image.little_endian(captured_length);
    write_exported_pdu(image, format, payload);
    image.zeros(padding_of(pdu_length));
    image.end_of_options();
    image.little_endian(block_length);
    return std::move(image).take();
}

}  // namespace KIVRA::TSHARK::ANALYSIS
