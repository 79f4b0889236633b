/// What a fuzz target does when the code under test is wrong.
#pragma once

#include <cstdlib>

namespace KIVRA::TSHARK::FUZZ {

/// Ends the process, which the fuzzer takes for a finding.
inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace KIVRA::TSHARK::FUZZ
