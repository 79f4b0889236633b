/// An IP packet through the prefix capture, with whatever the context carries already.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>
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
json carried_state(FuzzedDataProvider& input) {
    const std::vector<json> states{nullptr,
                                   json::object(),
                                   {{"nas-eps", {{"pdn", {{"nas_eps.esm.pdn_ipv4", "10.0.0.1"}}}}}},
                                   {{"nas-eps", {{"pdn", {{"ICMPv6_prefix", "fe80"}}}}}},
                                   {{"nas-eps", {{"pdn", "a text"}}}},
                                   {{"nas-eps", {{"pdn", json::array()}}}}};
    return states[input.ConsumeIntegralInRange<std::size_t>(0, states.size() - 1)];
}

bool is_router_advertisement(const std::vector<std::uint8_t>& packet) {
    return packet.size() >= 88 && packet[6] == ':' && packet[40] == 134;
}

/// The 16 bytes that a prefix text stands for.
std::vector<std::uint8_t> bytes_of(const std::string& prefix) {
    require(prefix.size() == 39);
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < prefix.size(); i += i % 5 == 2 ? 3 : 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(prefix.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    context().carried_state = carried_state(input);
    const auto packet = input.ConsumeRemainingBytes<std::uint8_t>();
    kivra_trace_chunk chunk{};
    chunk.format = "ip";
    chunk.data = packet.data();
    chunk.size = static_cast<std::uint32_t>(packet.size());

    std::string prefix;
    try {
        ANALYSIS::capture_ipv6_prefix(context(), chunk, [&](const json& document) {
            prefix = document.at("nas-eps").at("pdn").at("ICMPv6_prefix").get<std::string>();
        });
    } catch (const json::exception&) {
        require(is_router_advertisement(packet));
        return 0;
    }
    require(prefix.empty() == !is_router_advertisement(packet));
    if (!prefix.empty()) {
        require(bytes_of(prefix) == std::vector(packet.begin() + 72, packet.begin() + 88));
    }
    return 0;
}
