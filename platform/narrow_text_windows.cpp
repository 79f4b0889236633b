#include <windows.h>

#include <clocale>
#include <system_error>

#include "platform/platform.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

UINT file_system_code_page() {
    if (___lc_codepage_func() == CP_UTF8) {
        return CP_UTF8;
    }
    return AreFileApisANSI() ? CP_ACP : CP_OEMCP;
}

int converted(int length) {
    if (length == 0) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "conversion of a text to a path");
    }
    return length;
}

}  // namespace

std::filesystem::path path_from_narrow(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const UINT code_page = file_system_code_page();
    const int size = static_cast<int>(text.size());
    const auto convert = [&](wchar_t* wide, int capacity) {
        return converted(MultiByteToWideChar(code_page, MB_ERR_INVALID_CHARS, text.data(), size,
                                             wide, capacity));
    };
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string narrow_from_path(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    if (wide.empty()) {
        return {};
    }
    const UINT code_page = file_system_code_page();
    const int size = static_cast<int>(wide.size());
    BOOL lossy = FALSE;
    // UTF-8 has every character, and takes no question about that.
    BOOL* const asked = code_page == CP_UTF8 ? nullptr : &lossy;
    const auto convert = [&](char* text, int capacity) {
        return converted(WideCharToMultiByte(code_page, WC_NO_BEST_FIT_CHARS * (asked != nullptr),
                                             wide.data(), size, text, capacity, nullptr, asked));
    };
    std::string text(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(text.data(), static_cast<int>(text.size()));
    if (lossy) {
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        converted(0);
    }
    return text;
}

}  // namespace KIVRA::TSHARK::PLATFORM
