#include "tests/replay/sample_captures.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <regex>
#include <sstream>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::TESTING {

namespace fs = std::filesystem;

fs::path sample_capture(const std::string& name) {
    return fs::path(KIVRA_SAMPLE_CAPTURES) / name;
}

process_result run_replay(std::vector<std::string> arguments, const process_setting& setting) {
    arguments.insert(arguments.begin(), KIVRA_REPLAY);
    return run_process(arguments, setting);
}

std::vector<std::string> without_numbers(const std::string& lines) {
    static const std::regex number("\"number\":[0-9]+,");
    std::istringstream stream(lines);
    std::vector<std::string> result;
    for (std::string line; std::getline(stream, line);) {
        result.push_back(
            std::regex_replace(line, number, "", std::regex_constants::format_first_only));
    }
    return result;
}

std::vector<std::string> pieces_of_pcap(const std::string& image) {
    constexpr std::size_t file_head = 24;
    constexpr std::size_t packet_head = 16;
    constexpr std::size_t size_place = 8;
    std::vector<std::string> pieces{image.substr(0, file_head)};
    for (std::size_t place = file_head; place < image.size();) {
        std::uint32_t size = 0;
        std::memcpy(&size, image.data() + place + size_place, sizeof size);
        pieces.push_back(image.substr(place, packet_head + size));
        place += packet_head + size;
    }
    return pieces;
}

void write_tshark(const fs::path& directory, const std::string& script) {
    fs::create_directories(directory);
    write_file(directory / "tshark", "#!/bin/sh\n" + script);
    fs::permissions(directory / "tshark", fs::perms::owner_all);
}

void write_noting_tshark() {
    write_tshark("bin", "echo \"$@\" >> calls\nexec /usr/bin/tshark \"$@\"\n");
}

}  // namespace KIVRA::TSHARK::TESTING
