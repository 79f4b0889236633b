/// Bytes as hexadecimal texts.
#pragma once

#include <string>
#include <string_view>

namespace KIVRA::TSHARK::TESTING {

inline std::string bytes_of(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

inline std::string hex_of(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        hex += digits[value >> 4U];
        hex += digits[value & 0xFU];
    }
    return hex;
}

}  // namespace KIVRA::TSHARK::TESTING
