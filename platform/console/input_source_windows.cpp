#include <process.h>
#include <windows.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <system_error>

#include "platform/console/input_source.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

constexpr std::size_t most_read_ahead = 65'536;

[[noreturn]] void fail(DWORD error) {
    throw std::system_error(static_cast<int>(error), std::system_category());
}

HANDLE open_source(const std::filesystem::path& file) {
    // The standard input stays the process's own.
    HANDLE opened = nullptr;
    if (file.empty()) {
        const HANDLE process = GetCurrentProcess();
        if (!DuplicateHandle(process, GetStdHandle(STD_INPUT_HANDLE), process, &opened, 0, FALSE,
                             DUPLICATE_SAME_ACCESS)) {
            fail(GetLastError());
        }
        return opened;
    }
    opened = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        const DWORD attributes = GetFileAttributesW(file.c_str());
        const bool is_folder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        fail(is_folder ? ERROR_DIRECTORY : error);
    }
    return opened;
}

}  // namespace

/// Windows can wait for no anonymous pipe: a thread reads, from the first time on that somebody
/// wants to.
struct input_source::state {
    explicit state(HANDLE opened)
        : input(opened), more(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        if (more == nullptr) {
            const DWORD reason = GetLastError();
            CloseHandle(input);
            fail(reason);
        }
    }
    ~state() {
        if (reader != nullptr) {
            end_reader();
        }
        CloseHandle(more);
        CloseHandle(input);
    }
    state(const state&) = delete;
    state& operator=(const state&) = delete;

    void start() {
        if (reader != nullptr) {
            return;
        }
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the runtime gives a handle as a number
        reader = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, run, this, 0, nullptr));
        if (reader == nullptr) {
            fail(ERROR_NOT_ENOUGH_MEMORY);
        }
    }

    HANDLE input;
    /// Signalled while there is something to take, or the end.
    HANDLE more;
    /// A thread of the system, whose reads can be cancelled.
    HANDLE reader = nullptr;
    std::mutex guard;
    std::condition_variable room;
    std::string waiting;
    DWORD error = ERROR_SUCCESS;
    bool ended = false;
    bool stops = false;

  private:
    static unsigned __stdcall run(void* self) {
        static_cast<state*>(self)->read_ahead();
        return 0;
    }

    void read_ahead() {
        std::string block(most_read_ahead, '\0');
        while (true) {
            DWORD count = 0;
            const BOOL read =
                ReadFile(input, block.data(), static_cast<DWORD>(block.size()), &count, nullptr);
            const DWORD result = read ? ERROR_SUCCESS : GetLastError();
            std::unique_lock lock(guard);
            if (!read || count == 0) {
                ended = true;
                // The writing end of a pipe was closed.
                error = result == ERROR_BROKEN_PIPE ? ERROR_SUCCESS : result;
                SetEvent(more);
                return;
            }
            waiting.append(block, 0, count);
            SetEvent(more);
            room.wait(lock, [this] { return stops || waiting.size() < most_read_ahead; });
            if (stops) {
                return;
            }
        }
    }

    void end_reader() {
        {
            const std::lock_guard lock(guard);
            stops = true;
        }
        room.notify_one();
        // The thread may be just before a read as well as in one.
        constexpr DWORD moment = 10;
        do {
            CancelSynchronousIo(reader);
        } while (WaitForSingleObject(reader, moment) == WAIT_TIMEOUT);
        CloseHandle(reader);
    }
};

input_source::input_source(const std::filesystem::path& file)
    : state_(std::make_unique<state>(open_source(file))) {}

input_source::~input_source() = default;

std::size_t input_source::read_available(std::span<char> room) {
    state_->start();
    const std::lock_guard lock(state_->guard);
    const std::size_t count = state_->waiting.copy(room.data(), room.size());
    state_->waiting.erase(0, count);
    if (state_->waiting.empty() && !state_->ended) {
        ResetEvent(state_->more);
    }
    state_->room.notify_one();
    if (count == 0 && state_->error != ERROR_SUCCESS) {
        fail(state_->error);
    }
    return count;
}

bool input_source::at_end() const {
    const std::lock_guard lock(state_->guard);
    return state_->ended && state_->waiting.empty();
}

waitable input_source::ready() const {
    return reinterpret_cast<waitable>(state_->more);
}

void input_source::wait() {
    WaitForSingleObject(state_->more, static_cast<DWORD>(longest_wait.count()));
}

bool input_source::is_regular_file() const {
    return GetFileType(state_->input) == FILE_TYPE_DISK;
}

/// What was read ahead is kept by the reader.
bool input_source::can_go_back() const {
    return false;
}

void input_source::go_back() {}

std::uint64_t input_source::size() const {
    LARGE_INTEGER size{};
    const bool is_known = is_regular_file() && GetFileSizeEx(state_->input, &size);
    return is_known ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

}  // namespace KIVRA::TSHARK::PLATFORM
