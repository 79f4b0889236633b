#include "parser/number_conversion.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace KIVRA::TSHARK::PARSER {

namespace {

/// The number as 64 bits hold it, which is enough to tell whether 32 would have.
std::int64_t convert(const std::string& text, std::int64_t least, std::int64_t greatest,
                     const std::string& conversion) {
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        throw std::invalid_argument("invalid " + conversion + " argument");
    }
    if (errno == ERANGE || number < least || number > greatest) {
        throw std::out_of_range(conversion + " argument out of range");
    }
    return number;
}

}  // namespace

std::int32_t to_int(const std::string& text) {
    using limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(convert(text, limits::min(), limits::max(), "stoi"));
}

std::uint32_t to_unsigned(const std::string& text) {
    constexpr std::int64_t greatest = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(convert(text, -greatest, greatest, "stoul"));
}

}  // namespace KIVRA::TSHARK::PARSER
