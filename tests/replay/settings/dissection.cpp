#include "tests/replay/settings/dissection.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "analysis/output_processing.h"
#include "analysis/tshark/pcapng_image.h"
#include "tests/support/bytes.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK::TESTING {

dissector::dissector() : session_(tshark_directory() / "tshark") {}

nlohmann::json dissector::packet(std::string_view format, std::string_view hex) {
    const std::string bytes = bytes_of(hex);
    const std::vector<std::uint8_t> payload(bytes.begin(), bytes.end());
    session_.send(ANALYSIS::pcapng_packet(format, payload, 1));
    const auto packets = nlohmann::json::parse(ANALYSIS::number_repeated_names(session_.receive()));
    EXPECT_EQ(packets.size(), 1U) << hex;
    return packets.empty() ? nlohmann::json() : packets.front();
}

std::string line_of(const REPLAY::setting& setting) {
    std::string line(text_of(setting.role));
    line += ' ' + setting.name + ": " + setting.value;
    if (!setting.unit.empty()) {
        line.append(" ").append(setting.unit);
    }
    return setting.known ? line : line + " ?";
}

std::vector<std::string> lines_of(const std::vector<REPLAY::setting>& settings) {
    return lines_of(settings, "");
}

std::vector<std::string> lines_of(const std::vector<REPLAY::setting>& settings,
                                  std::string_view beginning) {
    std::vector<std::string> lines;
    for (const auto& setting : settings) {
        const std::string line = line_of(setting);
        if (line.starts_with(beginning)) {
            lines.push_back(line);
        }
    }
    return lines;
}

}  // namespace KIVRA::TSHARK::TESTING
