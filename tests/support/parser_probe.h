/// What unit tests of parsers need: packets around a layer, and a log that remembers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::TESTING {

/// A packet document with one layer.
inline nlohmann::json packet_with(const char* protocol, std::string_view dissection) {
    return {{"_source", {{"layers", {{protocol, nlohmann::json::parse(dissection)}}}}}};
}

struct log_entry {
    const void* caller;
    std::uint32_t level;
    std::string message;
};

/// A log whose address serves as the user data of `callback`.
struct log_recorder {
    std::vector<log_entry> entries;

    static void callback(const void* caller, void* user_data, std::uint32_t level,
                         const char* message) {
        static_cast<log_recorder*>(user_data)->entries.push_back({caller, level, message});
    }

    std::vector<std::string> messages() const {
        std::vector<std::string> texts;
        for (const auto& entry : entries) {
            texts.push_back(entry.message);
        }
        return texts;
    }
};

}  // namespace KIVRA::TSHARK::TESTING
