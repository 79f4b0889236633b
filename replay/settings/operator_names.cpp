#include "replay/settings/operator_names.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "parser/operator_database.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using nlohmann::json;

constexpr std::uint32_t codes_of_a_country = 1'000;

struct listed_operator {
    std::string mnc;
    std::string name;
};

/// By country code times 1,000 plus network code, in the order of the list.
using operator_index = std::unordered_map<std::uint32_t, std::vector<listed_operator>>;

std::optional<std::uint32_t> code_of(std::string_view digits) {
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    if (error != std::errc() || end != digits.data() + digits.size() ||
        code >= codes_of_a_country) {
        return std::nullopt;
    }
    return code;
}

std::string_view text_member(const json& entry, const char* name) {
    const auto member = entry.find(name);
    return member != entry.end() && member->is_string() ? member->get_ref<const std::string&>()
                                                        : std::string_view();
}

/// The operator, or its brand, and the country, as far as the list has them.
std::string name_of(const json& entry) {
    const std::string_view name = text_member(entry, "operator");
    std::string text(name.empty() ? text_member(entry, "brand") : name);
    const std::string_view country = text_member(entry, "countryName");
    if (!text.empty() && !country.empty()) {
        text += ", ";
    }
    return text.append(country);
}

/// "100 - 190" stands for all codes from the first to the last.
void add_to(operator_index& index, const json& entry) {
    constexpr std::string_view range_separator = " - ";
    const auto mcc = code_of(text_member(entry, "mcc"));
    const std::string_view mnc = text_member(entry, "mnc");
    const std::size_t separator = mnc.find(range_separator);
    const bool is_range = separator != std::string_view::npos;
    const auto first = code_of(mnc.substr(0, separator));
    const auto last = is_range ? code_of(mnc.substr(separator + range_separator.size())) : first;
    if (!mcc || !first || !last) {
        return;
    }
    const std::string name = name_of(entry);
    for (std::uint32_t code = *first; code <= *last; ++code) {
        auto& names = index[*mcc * codes_of_a_country + code];
        if (std::ranges::find(names, name, &listed_operator::name) == names.end()) {
            names.push_back({is_range ? std::to_string(code) : std::string(mnc), name});
        }
    }
}

const operator_index& listed_operators() {
    static const operator_index index = [] {
        operator_index built;
        for (const auto& entry : *PARSER::built_in_operators()) {
            add_to(built, entry);
        }
        return built;
    }();
    return index;
}

std::string padded(std::string_view digits, std::size_t size) {
    return std::string(size - std::min(size, digits.size()), '0').append(digits);
}

}  // namespace

std::string operator_text(std::string_view mcc, std::string_view mnc) {
    const std::string country = padded(mcc, 3);
    const auto mcc_code = code_of(mcc);
    const auto mnc_code = code_of(mnc);
    if (!mcc_code || !mnc_code) {
        return country + '/' + padded(mnc, 2);
    }
    const operator_index& index = listed_operators();
    const auto found = index.find(*mcc_code * codes_of_a_country + *mnc_code);
    if (found == index.end()) {
        return country + '/' + padded(mnc, 2);
    }
    // Some versions of tshark leave the leading zeros out, which count in the list.
    const std::size_t digits = std::max(mnc.size(), found->second.front().mnc.size());
    std::string text = country + '/' + padded(mnc, digits);
    char separator = ' ';
    for (const auto& listed : found->second) {
        text += separator == ' ' ? " " : "; ";
        text += listed.name;
        separator = ';';
    }
    return text;
}

}  // namespace KIVRA::TSHARK::REPLAY
