#include "analysis/json_intake.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "analysis/json_nesting.h"
#include "profile/result_mapping.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

bool is_packet(const nlohmann::json& value) {
    const auto source = value.find("_source");
    return source != value.end() && source->is_object() && source->contains("layers");
}

/// How many brackets of a valid JSON text are open at once.
std::size_t deepest_place(std::string_view text) {
    json_nesting nesting;
    std::size_t deepest = 0;
    for (const char c : text) {
        nesting.take(c);
        deepest = std::max(deepest, nesting.depth());
    }
    return deepest;
}

/// The library parses and destroys without recursion; all that follows recurses.
nlohmann::json parse_output(const std::string& text) {
    nlohmann::json parsed = nlohmann::json::parse(text);
    // A NUL ends the text for the library.
    if (deepest_place(std::string_view(text).substr(0, text.find('\0'))) > deepest_nesting) {
        throw std::runtime_error("output of tshark is nested more than " +
                                 std::to_string(deepest_nesting) + " levels deep");
    }
    return parsed;
}

}  // namespace

std::string read_output(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) {
        throw std::runtime_error("cannot open file");
    }
    std::string text;
    std::array<char, 65'536> piece{};
    do {
        stream.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<std::size_t>(stream.gcount()));
    } while (stream.good());
    return text;
}

std::string number_repeated_names(const std::string& text) {
    constexpr std::string_view name = R"("gsm_a.gm.sm.pco_pid_tree")";
    std::string numbered;
    std::uint8_t counter = 0;
    std::size_t copied = 0;
    for (std::size_t found = text.find(name); found != std::string::npos;
         found = text.find(name, copied)) {
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

nlohmann::json take_in(sink_context& context, const std::string& output) {
    const nlohmann::json parsed = parse_output(number_repeated_names(output));
    nlohmann::json result;
    for (const auto& value : parsed) {
        if (is_packet(value)) {
            PROFILE::map_packet(context, value, result);
        }
    }
    return result;
}

}  // namespace KIVRA::TSHARK::ANALYSIS
