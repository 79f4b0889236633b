#include <windows.h>

#include <system_error>

#include "platform/console/journal_file.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

void check(bool succeeded) {
    if (!succeeded) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
}

}  // namespace

struct journal_file::state {
    explicit state(const std::filesystem::path& file)
        : handle(CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0,
                             nullptr)) {
        if (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION) {
            throw file_in_use();
        }
        check(handle != INVALID_HANDLE_VALUE);
    }
    ~state() { CloseHandle(handle); }
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    HANDLE handle;
};

journal_file::journal_file(const std::filesystem::path& file)
    : state_(std::make_unique<state>(file)) {}

journal_file::~journal_file() = default;

void journal_file::cut(std::uint64_t size) {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(size);
    check(SetFilePointerEx(state_->handle, place, nullptr, FILE_BEGIN));
    check(SetEndOfFile(state_->handle));
}

void journal_file::append(std::string_view text) {
    DWORD written = 0;
    check(SetFilePointerEx(state_->handle, {}, nullptr, FILE_END));
    check(
        WriteFile(state_->handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    check(FlushFileBuffers(state_->handle));
}

}  // namespace KIVRA::TSHARK::PLATFORM
