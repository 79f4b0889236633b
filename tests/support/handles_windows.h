/// Handles of the test's process.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::TESTING {

/// Makes a handle that children may inherit; it is never closed.
/// @return its number, which no handle of a young process has
inline std::intptr_t inheritable_handle() {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    HANDLE handle = nullptr;
    for (int i = 0; i < 1000; ++i) {
        handle = CreateEventA(&inheritable, TRUE, FALSE, nullptr);
        EXPECT_NE(handle, nullptr);
    }
    return reinterpret_cast<std::intptr_t>(handle);
}

/// The free places for handles, as a hundred new ones take them.
inline std::vector<HANDLE> free_handle_places() {
    std::vector<HANDLE> places(100);
    for (HANDLE& place : places) {
        place = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    }
    for (const HANDLE place : places) {
        CloseHandle(place);
    }
    std::ranges::sort(places);
    return places;
}

}  // namespace KIVRA::TSHARK::TESTING
