/// A parameter block, checked against what its entries say one by one.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include <kivra/tshark_sink.h>

#include "fuzz/require.h"
#include "sink/init_parameters.h"

namespace {

using namespace KIVRA::TSHARK;
using FUZZ::require;

/// A text without a NUL, or none.
class text {
  public:
    void take(FuzzedDataProvider& input) {
        is_null_ = input.ConsumeBool();
        if (!is_null_) {
            const auto size = input.ConsumeIntegralInRange<std::size_t>(0, longest);
            characters_[input.ConsumeData(characters_.data(), size)] = '\0';
        }
    }

    void set(const char* value) {
        is_null_ = false;
        *std::copy_n(value, std::strlen(value), characters_.data()) = '\0';
    }

    const char* pointer() const { return is_null_ ? nullptr : characters_.data(); }

  private:
    static constexpr std::size_t longest = 64;

    bool is_null_ = false;
    std::array<char, longest + 1> characters_{};
};

void take_key(FuzzedDataProvider& input, text& key) {
    constexpr std::array keys{"tshark_directory", "file_path", "tshark_session"};
    const auto chosen = input.ConsumeIntegralInRange<std::size_t>(0, keys.size());
    if (chosen < keys.size()) {
        key.set(keys[chosen]);
    } else {
        key.take(input);
    }
}

/// What the entries that count say of a key; empty when they do not.
std::string_view value_of(const kivra_init_parameters& block, std::string_view key) {
    std::string_view value;
    for (std::size_t i = 0; i < block.count && i < KIVRA_INIT_PARAMETER_CAPACITY; ++i) {
        const auto& entry = block.entries[i];
        if (entry.key != nullptr && entry.value != nullptr && entry.key == key) {
            value = entry.value;
        }
    }
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::array<text, KIVRA_INIT_PARAMETER_CAPACITY> keys;
    static std::array<text, KIVRA_INIT_PARAMETER_CAPACITY> values;
    FuzzedDataProvider input(data, size);
    kivra_init_parameters block{};
    block.count = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint64_t>(0, 25)
                                      : input.ConsumeIntegral<std::uint64_t>();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        take_key(input, keys[i]);
        if (input.ConsumeBool()) {
            values[i].set("on");
        } else {
            values[i].take(input);
        }
        block.entries[i].key = keys[i].pointer();
        block.entries[i].value = values[i].pointer();
    }
    try {
        const auto read = SINK::read_init_parameters(block);
        require(block.count <= keys.size());
        require(read.tshark_directory.native() == value_of(block, "tshark_directory"));
        require(read.parameter_file.native() == value_of(block, "file_path"));
        require(read.tshark_session == (value_of(block, "tshark_session") == "on"));
    } catch (const std::runtime_error&) {
        require(block.count > keys.size());
    }
    return 0;
}
