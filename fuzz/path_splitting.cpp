/// The value of PATH, split into folders and held against them.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "sink/tshark_discovery.h"

using KIVRA::TSHARK::FUZZ::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string value(reinterpret_cast<const char*>(data), size);
    auto folders = KIVRA::TSHARK::SINK::candidate_directories(value);
    require(!folders.empty() && folders.back() == R"(C:\Program Files)");
    folders.pop_back();
    // The value is the folders with any number of separators around each.
    std::string_view rest = value;
    const auto skip_separators = [&rest] {
        rest.remove_prefix(std::min(rest.find_first_not_of(';'), rest.size()));
    };
    for (const auto& folder : folders) {
        require(!folder.empty() && folder.find(';') == std::string::npos);
        skip_separators();
        require(rest.starts_with(folder));
        rest.remove_prefix(folder.size());
        require(rest.empty() || rest.front() == ';');
    }
    skip_separators();
    require(rest.empty());
    return 0;
}
