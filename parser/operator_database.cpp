#include "parser/operator_database.h"

#include <string>
#include <utility>

#include "data/embedded_operators.h"
#include "parser/number_conversion.h"

namespace KIVRA::TSHARK::PARSER {

operator_list load_operators(std::string_view text) {
    auto parsed = nlohmann::json::parse(text);
    if (!parsed.is_array()) {
        throw nlohmann::json::type_error::create(
            302, std::string("type must be array, but is ") + parsed.type_name(), &parsed);
    }
    return std::move(parsed.get_ref<nlohmann::json::array_t&>());
}

std::shared_ptr<const operator_list> built_in_operators() {
    static const auto operators =
        std::make_shared<const operator_list>(load_operators(DATA::embedded_operators()));
    return operators;
}

const nlohmann::json* find_operator(const operator_list& operators, std::int32_t mcc,
                                    std::int32_t mnc) {
    for (const auto& entry : operators) {
        const auto entry_mcc = entry.find("mcc");
        const auto entry_mnc = entry.find("mnc");
        if (entry_mcc == entry.end() || entry_mnc == entry.end()) {
            continue;
        }
        // Both are converted before either is compared, so a bad code ends the search even where
        // the other one differs.
        const std::int32_t mcc_number = to_int(entry_mcc->get<std::string>());
        const std::int32_t mnc_number = to_int(entry_mnc->get<std::string>());
        if (mcc_number == mcc && mnc_number == mnc) {
            return &entry;
        }
    }
    return nullptr;
}

}  // namespace KIVRA::TSHARK::PARSER
