#include "analysis/output_processing.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "analysis/tshark/json_nesting.h"
#include "profile/result_mapping.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

bool is_packet(const nlohmann::json& value) {
    const auto source = value.find("_source");
    return source != value.end() && source->is_object() && source->contains("layers");
}

/// Whether more brackets of a valid JSON text are open at once than may be.
bool is_too_deep(std::string_view text) {
    // What has no more brackets, as most outputs, needs no closer look.
    if (std::ranges::count(text, '{') + std::ranges::count(text, '[') <=
        std::ptrdiff_t{deepest_nesting}) {
        return false;
    }
    json_nesting nesting;
    return std::ranges::any_of(text, [&nesting](char c) {
        nesting.take(c);
        return nesting.depth() > deepest_nesting;
    });
}

/// The library parses and destroys without recursion; all that follows recurses.
nlohmann::json parse_output(const std::string& text) {
    nlohmann::json parsed = nlohmann::json::parse(text);
    // A NUL ends the text for the library.
    if (is_too_deep(std::string_view(text).substr(0, text.find('\0')))) {
        throw std::runtime_error("output of tshark is nested more than " +
                                 std::to_string(deepest_nesting) + " levels deep");
    }
    return parsed;
}

}  // namespace

std::string number_repeated_names(std::string text) {
    constexpr std::string_view name = R"("gsm_a.gm.sm.pco_pid_tree")";
    std::size_t found = text.find(name);
    if (found == std::string::npos) {
        return text;
    }
    std::string numbered;
    std::uint8_t counter = 0;
    std::size_t copied = 0;
    for (; found != std::string::npos; found = text.find(name, copied)) {
        ++counter;
        // The closing quote is left to the next search: it may open the next occurrence.
        const std::size_t closing_quote = found + name.size() - 1;
        numbered.append(text, copied, closing_quote - copied);
        numbered += std::to_string(counter);
        copied = closing_quote;
    }
    numbered.append(text, copied);
    return numbered;
}

nlohmann::json process_output(sink_context& context, std::string output,
                              const packet_observer& observe) {
    const nlohmann::json parsed = parse_output(number_repeated_names(std::move(output)));
    nlohmann::json result;
    for (const auto& value : parsed) {
        if (is_packet(value)) {
            if (observe) {
                observe(value);
            }
            PROFILE::map_packet(context, value, result);
        }
    }
    return result;
}

}  // namespace KIVRA::TSHARK::ANALYSIS
