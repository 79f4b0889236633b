/// A parameter block, checked against what its entries say one by one.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include <kivra/tshark_sink.h>

#include "fuzz/require.h"
#include "sink/init_parameters.h"

namespace {

using namespace KIVRA::TSHARK;
using FUZZ::require;

/// A text without a NUL, or none.
std::optional<std::string> text_or_null(FuzzedDataProvider& input) {
    if (input.ConsumeBool()) {
        return std::nullopt;
    }
    const std::string text = input.ConsumeRandomLengthString(64);
    return text.c_str();
}

std::optional<std::string> key_or_null(FuzzedDataProvider& input) {
    constexpr std::array keys{"tshark_directory", "file_path"};
    const auto chosen = input.ConsumeIntegralInRange<std::size_t>(0, keys.size());
    return chosen < keys.size() ? keys[chosen] : text_or_null(input);
}

const char* pointer_to(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    std::array<std::optional<std::string>, KIVRA_INIT_PARAMETER_CAPACITY> keys;
    std::array<std::optional<std::string>, KIVRA_INIT_PARAMETER_CAPACITY> values;
    kivra_init_parameters block{};
    block.count = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint64_t>(0, 25)
                                      : input.ConsumeIntegral<std::uint64_t>();
    std::string directory;
    std::string file;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i] = key_or_null(input);
        values[i] = text_or_null(input);
        block.entries[i].key = pointer_to(keys[i]);
        block.entries[i].value = pointer_to(values[i]);
        if (i < block.count && values[i]) {
            directory = keys[i] == "tshark_directory" ? *values[i] : directory;
            file = keys[i] == "file_path" ? *values[i] : file;
        }
    }
    try {
        const auto read = SINK::read_init_parameters(block);
        require(block.count <= keys.size());
        require(read.tshark_directory == directory && read.parameter_file == file);
    } catch (const std::runtime_error&) {
        require(block.count > keys.size());
    }
    return 0;
}
