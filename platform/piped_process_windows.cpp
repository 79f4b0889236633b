#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <utility>

#include "platform/piped_process.h"

namespace KIVRA::TSHARK::PLATFORM {

namespace {

constexpr std::size_t buffer_size = 65'536;
constexpr std::size_t most_error_text = 65'536;

[[noreturn]] void fail() {
    throw process_not_started(GetLastError());
}

class handle {
  public:
    /// @throws process_not_started for a handle that the system did not give
    explicit handle(HANDLE value) : value_(value) {
        if (value_ == nullptr || value_ == INVALID_HANDLE_VALUE) {
            value_ = nullptr;
            fail();
        }
    }
    ~handle() { close(); }
    handle(handle&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    handle(const handle&) = delete;
    handle& operator=(const handle&) = delete;
    handle& operator=(handle&&) = delete;

    HANDLE get() const { return value_; }
    bool is_open() const { return value_ != nullptr; }

    void close() {
        if (is_open()) {
            CloseHandle(std::exchange(value_, nullptr));
        }
    }

  private:
    HANDLE value_ = nullptr;
};

/// What the system makes of a file or pipe for a child.
SECURITY_ATTRIBUTES inheritable() {
    return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

handle open_for_child(const wchar_t* name, DWORD access) {
    SECURITY_ATTRIBUTES attributes = inheritable();
    return handle(CreateFileW(name, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                              OPEN_EXISTING, 0, nullptr));
}

struct pipe_ends {
    handle ours;
    handle childs;
};

/// A pipe with a name, since only such a one can be read and written without waiting for it.
/// @param direction PIPE_ACCESS_INBOUND or PIPE_ACCESS_OUTBOUND, as seen from here
pipe_ends make_pipe(DWORD direction) {
    static std::atomic<std::uint64_t> count = 0;
    // Another copy of this code in the same process has a count of its own elsewhere.
    const std::wstring name = LR"(\\.\pipe\kivra-)" + std::to_wstring(GetCurrentProcessId()) +
                              L'-' + std::to_wstring(reinterpret_cast<std::uintptr_t>(&count)) +
                              L'-' + std::to_wstring(++count);
    handle ours(CreateNamedPipeW(
        name.c_str(), direction | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1,
        buffer_size, buffer_size, 0, nullptr));
    handle childs = open_for_child(name.c_str(),
                                   direction == PIPE_ACCESS_INBOUND ? GENERIC_WRITE : GENERIC_READ);
    return {std::move(ours), std::move(childs)};
}

/// As CommandLineToArgvW and the runtimes read it: in quotes, with a backslash before each quote
/// and before each backslash that stands in front of a quote.
std::wstring in_quotes(const std::wstring& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') {
            text.append(backslashes + 1, L'\\');
        }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\') + L'"';
}

std::wstring command_line(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments) {
    std::wstring line = LR"(")" + program.native() + LR"(")";
    for (const std::string& argument : arguments) {
        const std::filesystem::path wide(std::u8string(argument.begin(), argument.end()));
        line += L' ' + in_quotes(wide.native());
    }
    return line;
}

/// The list of the handles that a child gets; of all that are inheritable in the host's process.
class handle_list {
  public:
    explicit handle_list(std::array<HANDLE, 3> handles) : handles_(handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        if (!InitializeProcThreadAttributeList(get(), 1, 0, &size)) {
            fail();
        }
        if (!UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                       sizeof handles_, nullptr, nullptr)) {
            const DWORD error = GetLastError();
            DeleteProcThreadAttributeList(get());
            throw process_not_started(error);
        }
    }
    ~handle_list() { DeleteProcThreadAttributeList(get()); }
    handle_list(const handle_list&) = delete;
    handle_list& operator=(const handle_list&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    }

  private:
    std::array<HANDLE, 3> handles_;
    std::vector<std::byte> memory_;
};

/// @return the process
handle start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
             const handle& input, const handle& output, const handle& error) {
    handle_list inherited({input.get(), output.get(), error.get()});
    STARTUPINFOEXW start_up{};
    start_up.StartupInfo.cb = sizeof start_up;
    start_up.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    start_up.StartupInfo.hStdInput = input.get();
    start_up.StartupInfo.hStdOutput = output.get();
    start_up.StartupInfo.hStdError = error.get();
    start_up.lpAttributeList = inherited.get();
    std::wstring line = command_line(program, arguments);
    PROCESS_INFORMATION process{};
    constexpr BOOL inherit_handles = TRUE;
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, inherit_handles,
                        CREATE_NO_WINDOW | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                        &start_up.StartupInfo, &process)) {
        fail();
    }
    CloseHandle(process.hThread);
    return handle(process.hProcess);
}

/// Where a child may print its errors to: a file that nobody else can open and that goes with its
/// last handle, or nothing.
handle make_error_file(error_text errors) {
    if (errors == error_text::dropped) {
        return open_for_child(L"NUL", GENERIC_WRITE);
    }
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> name{};
    if (GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()) == 0 ||
        GetTempFileNameW(folder.data(), L"kiv", 0, name.data()) == 0) {
        fail();
    }
    SECURITY_ATTRIBUTES attributes = inheritable();
    return handle(CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE, 0, &attributes,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                              nullptr));
}

/// One direction: the end of a pipe, and at most one transfer under way between it and the buffer.
class channel {
  public:
    explicit channel(handle end)
        : end_(std::move(end)), event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        state_.hEvent = event_.get();
    }
    ~channel() { close(); }
    channel(const channel&) = delete;
    channel& operator=(const channel&) = delete;

    bool is_open() const { return end_.is_open(); }
    bool is_busy() const { return is_busy_; }
    HANDLE event() const { return event_.get(); }
    std::span<char> buffer() { return buffer_; }

    void begin_write(std::size_t size) {
        is_busy_ = true;
        settle(WriteFile(end_.get(), buffer_.data(), static_cast<DWORD>(size), nullptr, &state_));
    }

    void begin_read() {
        is_busy_ = true;
        settle(ReadFile(end_.get(), buffer_.data(), buffer_size, nullptr, &state_));
    }

    /// Looks whether the transfer has ended. A failure closes the pipe: the other end is gone.
    /// @return how many bytes were transferred; 0 when it goes on or failed
    std::size_t finish() {
        if (!is_busy_) {
            return 0;
        }
        DWORD count = 0;
        constexpr BOOL wait = FALSE;
        if (GetOverlappedResult(end_.get(), &state_, &count, wait)) {
            is_busy_ = false;
            return count;
        }
        settle(FALSE, ERROR_IO_INCOMPLETE);
        return 0;
    }

    /// A transfer that is under way is given up.
    void close() {
        if (is_busy_) {
            CancelIoEx(end_.get(), &state_);
            DWORD count = 0;
            constexpr BOOL wait = TRUE;
            GetOverlappedResult(end_.get(), &state_, &count, wait);
            is_busy_ = false;
        }
        end_.close();
    }

  private:
    /// Takes note of a call that has failed for another reason than that the transfer goes on.
    void settle(BOOL result, DWORD going_on = ERROR_IO_PENDING) {
        if (!result && GetLastError() != going_on) {
            is_busy_ = false;
            end_.close();
        }
    }

    handle end_;
    handle event_;
    OVERLAPPED state_{};
    bool is_busy_ = false;
    std::array<char, buffer_size> buffer_{};
};

}  // namespace

struct piped_process::connection {
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               error_text wanted)
        : connection(program, arguments, wanted, make_pipe(PIPE_ACCESS_OUTBOUND),
                     make_pipe(PIPE_ACCESS_INBOUND)) {}

    ~connection() {
        input.close();
        output.close();
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), INFINITE);
    }
    connection(const connection&) = delete;
    connection& operator=(const connection&) = delete;

    std::size_t write(std::string_view text) {
        if (closes_input || !input.is_open()) {
            finish_input();
            return text.size();
        }
        std::size_t written = 0;
        for (;;) {
            finish_input();
            if (!input.is_open()) {
                return text.size();
            }
            if (input.is_busy() || written == text.size()) {
                return written;
            }
            const std::size_t size = text.copy(input.buffer().data(), buffer_size, written);
            written += size;
            input.begin_write(size);
        }
    }

    void finish_input() {
        const bool is_alone = program_has_ended();
        input.finish();
        if ((closes_input && !input.is_busy()) || is_alone) {
            input.close();
        }
    }

    std::size_t read(std::span<char> room) {
        if (room.empty()) {
            return 0;
        }
        if (waiting.empty()) {
            fetch();
        }
        const std::size_t count = std::min(room.size(), waiting.size());
        std::memcpy(room.data(), waiting.data(), count);
        waiting = waiting.subspan(count);
        return count;
    }

    /// Gets what the program has printed into the buffer, or a transfer under way.
    void fetch() {
        while (waiting.empty() && output.is_open()) {
            if (!output.is_busy()) {
                output.begin_read();
            }
            const bool is_alone = program_has_ended();
            const std::size_t count = output.finish();
            waiting = output.buffer().first(count);
            if (output.is_busy()) {
                if (is_alone) {
                    output.close();
                }
                return;
            }
        }
    }

    /// It may have left its ends of the pipes to another process, which then keeps them open: what
    /// the program has printed is there by then, and nothing else is waited for.
    bool program_has_ended() const {
        return WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0;
    }

    bool has_ended() const { return waiting.empty() && !output.is_open(); }

    /// Waits until a transfer under way has ended, or what else is wanted. What has come for nobody
    /// is none to wait for.
    void wait(const occasion& wanted, DWORD milliseconds) const {
        std::array<HANDLE, 4> events{};
        DWORD count = 0;
        if (input.is_busy()) {
            events.at(count++) = input.event();
        }
        if (wanted.output && output.is_busy()) {
            events.at(count++) = output.event();
        }
        if (count > 0) {
            events.at(count++) = process.get();
        }
        if (wanted.other) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): the caller has a handle as a number
            events.at(count++) = reinterpret_cast<HANDLE>(*wanted.other);
        }
        constexpr BOOL all = FALSE;
        WaitForMultipleObjects(count, events.data(), all, milliseconds);
    }

    channel input;
    channel output;
    error_text wanted_errors;
    handle errors;
    handle process;
    /// What has come and not been read, in the buffer of `output`.
    std::span<const char> waiting;
    /// There is no more input than what is under way.
    bool closes_input = false;

  private:
    connection(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               error_text wanted, pipe_ends to_child, pipe_ends from_child)
        : input(std::move(to_child.ours)),
          output(std::move(from_child.ours)),
          wanted_errors(wanted),
          errors(make_error_file(wanted)),
          process(start(program, arguments, to_child.childs, from_child.childs, errors)) {}
};

piped_process::piped_process(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments, error_text errors)
    : connection_(std::make_unique<connection>(program, arguments, errors)) {}

piped_process::~piped_process() = default;

piped_process::transfer piped_process::exchange(std::string_view input, std::span<char> output,
                                                bool wait) {
    transfer moved;
    while (!connection_->has_ended()) {
        moved.written = connection_->write(input);
        moved.read = connection_->read(output);
        const bool idle = moved.written == 0 && moved.read == 0 && !connection_->has_ended();
        if (!idle || !wait || (input.empty() && output.empty())) {
            break;
        }
        connection_->wait({.input = !input.empty(), .output = !output.empty()}, INFINITE);
    }
    moved.ended = connection_->has_ended();
    return moved;
}

void piped_process::wait(const occasion& wanted, std::chrono::milliseconds at_most) const {
    connection_->wait(wanted, static_cast<DWORD>(at_most.count()));
}

int piped_process::exit_status() {
    const HANDLE process = connection_->process.get();
    WaitForSingleObject(process, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process, &status);
    return static_cast<int>(status);
}

std::string piped_process::printed_errors() const {
    if (connection_->wanted_errors == error_text::dropped) {
        return {};
    }
    std::string text(most_error_text, '\0');
    OVERLAPPED from_the_beginning{};
    DWORD size = 0;
    ReadFile(connection_->errors.get(), text.data(), static_cast<DWORD>(text.size()), &size,
             &from_the_beginning);
    text.resize(size);
    return text;
}

void piped_process::close_input() {
    connection_->closes_input = true;
    connection_->finish_input();
}

}  // namespace KIVRA::TSHARK::PLATFORM
