#include "tests/replay/sample_records.h"

#include <cstddef>
#include <memory>
#include <regex>
#include <string_view>

#include "replay/input/direct_capture.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::TESTING {

namespace {

image_packet image_of(const REPLAY::trace_record& record) {
    const std::string message(record.payload.begin(), record.payload.end());
    return {exported_pdu_image(record.format, message), record.timestamp};
}

}  // namespace

std::vector<image_packet> records_of(const char* sample) {
    REPLAY::direct_capture source(
        sample, std::make_unique<PLATFORM::input_stream>(capture_file(sample), nullptr));
    std::vector<image_packet> packets;
    while (const auto packet = source.next()) {
        packets.push_back(image_of(*packet));
    }
    return packets;
}

image_packet system_information(const char* sample) {
    return records_of(sample).front();
}

image_packet lab_network_accept() {
    constexpr std::size_t attach_accept = 12;
    // The GUTI's type and the codes of 262/02, and those of 001/01.
    constexpr std::string_view known_network = "\xf6\x62\xf2\x20";
    constexpr std::string_view lab_network{"\xf6\x00\xf1\x10", 4};
    auto packet = records_of("ltem_attach_psm.pcapng").at(attach_accept);
    packet.data.replace(packet.data.find(known_network), known_network.size(), lab_network);
    return packet;
}

std::string without_timing(const std::string& lines) {
    static const std::regex timing(R"(\{"level":3,"message":"tshark processing took: \d+ms"\})");
    return std::regex_replace(lines, timing, "");
}

}  // namespace KIVRA::TSHARK::TESTING
