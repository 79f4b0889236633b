#include "analysis/ipv6_prefix.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "analysis/record_payload.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

// Offsets into an IPv6 packet: its fixed header (RFC 8200, 3) is 40 bytes long, the router
// advertisement's 16, and the prefix stands 16 bytes into its option.
constexpr std::size_t next_header_offset = 6;
constexpr std::size_t icmp_type_offset = 40;
constexpr std::size_t prefix_offset = 72;
constexpr std::size_t prefix_length = 16;

constexpr std::uint8_t icmpv6 = 58;
constexpr std::uint8_t router_advertisement = 134;

bool is_router_advertisement(std::span<const std::uint8_t> packet) {
    return packet[next_header_offset] == icmpv6 && packet[icmp_type_offset] == router_advertisement;
}

/// Eight groups of four digits; groups of zeros are not shortened.
std::string prefix_text(std::span<const std::uint8_t> prefix) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (i != 0 && i % 2 == 0) {
            text += ':';
        }
        text += digits[prefix[i] >> 4];
        text += digits[prefix[i] & 0xF];
    }
    return text;
}

}  // namespace

void capture_ipv6_prefix(sink_context& context, const kivra_trace_chunk& chunk,
                         const document_receiver& receive) {
    if (chunk.format == nullptr || chunk.format != std::string_view("ip") ||
        chunk.size < prefix_offset + prefix_length) {
        return;
    }
    const auto packet = record_payload(chunk);
    if (!is_router_advertisement(packet)) {
        return;
    }
    nlohmann::json separate;
    nlohmann::json& document = context.carried_state.empty() ? separate : context.carried_state;
    document["nas-eps"]["pdn"]["ICMPv6_prefix"] =
        prefix_text(packet.subspan(prefix_offset, prefix_length));
    receive(document);
}

}  // namespace KIVRA::TSHARK::ANALYSIS
