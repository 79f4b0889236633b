/// The output of a running tshark, cut into pieces and split into packets.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/tshark/packet_splitter.h"
#include "fuzz/require.h"

namespace {

using namespace KIVRA::TSHARK::ANALYSIS;
using KIVRA::TSHARK::FUZZ::require;

/// What a splitter gives for an output.
struct split_output {
    std::vector<split_packet> packets;
    bool refused = false;
};

/// @param next_size how large the next piece is, from 1
template <typename NextSize>
split_output split(std::string_view output, const NextSize& next_size) {
    split_output result;
    packet_splitter splitter;
    try {
        while (!output.empty()) {
            const std::size_t size = std::min(next_size(), output.size());
            splitter.add(output.substr(0, size));
            output.remove_prefix(size);
            while (auto packet = splitter.next()) {
                result.packets.push_back(std::move(*packet));
            }
        }
    } catch (const not_a_packet&) {
        result.refused = true;
    }
    return result;
}

void check_packet(const split_packet& packet, std::string_view output) {
    constexpr std::string_view head = "[\n  ";
    constexpr std::string_view end = "\n]\n";
    require(packet.number != 0);
    require(packet.text.starts_with(std::string(head) + '{'));
    // Brackets are only counted: that they match is for the parser to see.
    require(packet.text.ends_with('}' + std::string(end)) ||
            packet.text.ends_with(']' + std::string(end)));
    const auto own = std::string_view(packet.text).substr(head.size());
    require(output.find(own.substr(0, own.size() - end.size())) != std::string_view::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto sizes =
        input.ConsumeBytes<std::uint8_t>(input.ConsumeIntegralInRange<std::size_t>(0, 16));
    const std::string output = input.ConsumeRemainingBytesAsString();

    const auto whole = split(output, [&] { return output.size(); });
    std::size_t cut = 0;
    const auto pieces = split(output, [&]() -> std::size_t {
        return sizes.empty() ? 1 : 1 + std::size_t{sizes[cut++ % sizes.size()]};
    });
    require(pieces.refused == whole.refused);
    require(std::ranges::equal(pieces.packets, whole.packets, [](const auto& a, const auto& b) {
        return a.number == b.number && a.text == b.text;
    }));
    for (const auto& packet : whole.packets) {
        check_packet(packet, output);
    }
    return 0;
}
