/// The value of PATH, split into folders and put together again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "sink/tshark_discovery.h"

namespace {

using KIVRA::TSHARK::FUZZ::require;

/// A value without the separators that stand for empty folders.
std::string tidied(const std::string& value) {
    std::string kept;
    for (const char c : value) {
        if (c != ';' || (!kept.empty() && kept.back() != ';')) {
            kept += c;
        }
    }
    if (kept.ends_with(';')) {
        kept.pop_back();
    }
    return kept;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string value(reinterpret_cast<const char*>(data), size);
    auto folders = KIVRA::TSHARK::SINK::candidate_directories(value);
    require(!folders.empty() && folders.back() == R"(C:\Program Files)");
    folders.pop_back();
    std::string joined;
    for (const auto& folder : folders) {
        require(!folder.empty());
        joined += (joined.empty() ? "" : ";") + folder;
    }
    require(joined == tidied(value));
    return 0;
}
