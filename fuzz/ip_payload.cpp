/// An IP packet through the prefix capture, with whatever the context carries already.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <kivra/tshark_sink.h>
#include <nlohmann/json.hpp>

#include "analysis/ipv6_prefix.h"
#include "context/sink_context.h"
#include "fuzz/require.h"

namespace {

using namespace KIVRA::TSHARK;
using FUZZ::require;
using nlohmann::json;

/// Made once, since it reads the operator list.
sink_context& context() {
    static sink_context instance(nullptr, nullptr, "tshark", "output-that-never-exists", {});
    return instance;
}

/// What a NAS record may have left; the last two can't take a prefix.
const json& carried_state(FuzzedDataProvider& input) {
    static const std::vector<json> states{
        nullptr,
        json::object(),
        {{"nas-eps", {{"pdn", {{"nas_eps.esm.pdn_ipv4", "10.0.0.1"}}}}}},
        {{"nas-eps", {{"pdn", {{"ICMPv6_prefix", "fe80"}}}}}},
        {{"nas-eps", {{"pdn", "a text"}}}},
        {{"nas-eps", {{"pdn", json::array()}}}}};
    return states[input.ConsumeIntegralInRange<std::size_t>(0, states.size() - 1)];
}

bool is_router_advertisement(std::span<const std::uint8_t> packet) {
    return packet.size() >= 88 && packet[6] == ':' && packet[40] == 134;
}

/// Eight groups of four digits stand for 16 bytes.
void check_prefix(std::string_view text, std::span<const std::uint8_t> prefix) {
    constexpr std::string_view digits = "0123456789abcdef";
    require(text.size() == 39);
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        const auto pair = text.substr(i * 2 + i / 2, 2);
        require(pair[0] == digits[prefix[i] / 16] && pair[1] == digits[prefix[i] % 16]);
        require(i % 2 == 0 || i == 15 || text[i * 2 + i / 2 + 2] == ':');
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    context().carried_state = carried_state(input);
    // What was consumed stands behind it. A copy of its own size shows a read beyond it.
    const std::vector<std::uint8_t> packet(data, data + input.remaining_bytes());
    kivra_trace_chunk chunk{};
    chunk.format = "ip";
    chunk.data = packet.data();
    chunk.size = static_cast<std::uint32_t>(packet.size());

    bool received = false;
    try {
        ANALYSIS::capture_ipv6_prefix(context(), chunk, [&](const json& document) {
            received = true;
            check_prefix(
                document.at("nas-eps").at("pdn").at("ICMPv6_prefix").get_ref<const std::string&>(),
                std::span(packet).subspan(72, 16));
        });
    } catch (const json::exception&) {
        require(is_router_advertisement(packet));
        return 0;
    }
    require(received == is_router_advertisement(packet));
    return 0;
}
