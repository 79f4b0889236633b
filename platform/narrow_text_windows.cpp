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

}  // namespace KIVRA::TSHARK::PLATFORM
