#include "replay/input/extraction/extracting_tshark.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/console/console.h"
#include "replay/input/extraction/protocol_statistics.h"
#include "replay/record/capture_error.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// An interruption is noticed between two waits.
constexpr milliseconds longest_wait{200};
constexpr std::size_t input_block = 65'536;

std::string argument_of(const std::filesystem::path& file) {
    if (file.empty()) {
        return "-";
    }
    // A name that begins with a dash is not an option.
    const std::u8string name = std::filesystem::absolute(file).u8string();
    return {name.begin(), name.end()};
}

/// The first line that tshark itself wrote to its standard error, without its name, which may have
/// its path.
std::string complaint_in(std::string_view errors) {
    constexpr std::string_view mark = "tshark: ";
    constexpr std::string_view before_name = "\n/";
    auto begin = errors.find(mark);
    while (begin != std::string_view::npos && begin != 0 &&
           before_name.find(errors[begin - 1]) == std::string_view::npos) {
        begin = errors.find(mark, begin + 1);
    }
    if (begin == std::string_view::npos) {
        return {};
    }
    errors.remove_prefix(begin + mark.size());
    return std::string(errors.substr(0, errors.find_first_of("\r\n")));
}

PLATFORM::piped_process start(const std::string& name, const std::filesystem::path& tshark,
                              const std::vector<std::string>& arguments) {
    try {
        return {tshark, arguments, PLATFORM::error_text::kept};
    } catch (const PLATFORM::process_not_started& error) {
        throw capture_error(name, std::string("tshark can't be started, error ") + error.what());
    }
}

}  // namespace

extracting_tshark::extracting_tshark(const capture_source& source, extraction_depth depth)
    : name_(source.name),
      input_(source.file.empty() ? source.stream.get() : nullptr),
      is_file_(source.stream->is_regular_file()),
      process_(start(name_, source.tshark,
                     extraction_arguments(argument_of(source.file), depth, source.options))) {}

extraction_state extracting_tshark::read(std::string& packet,
                                         std::optional<milliseconds> patience) {
    auto last_move = steady_clock::now();
    try {
        while (true) {
            // A file can be read again; what came from a pipe goes through tshark to its end.
            if (is_file_ && PLATFORM::interrupted()) {
                throw capture_error(name_, "interrupted");
            }
            if (auto next = output_.next()) {
                packet = std::move(next->text);
                return extraction_state::packet;
            }
            statistics_ += output_.text_behind();
            output_.add({});
            if (ended_) {
                return finish();
            }
            if (move()) {
                last_move = steady_clock::now();
                continue;
            }
            if (patience && awaits_input() && steady_clock::now() - last_move >= *patience) {
                return extraction_state::idle;
            }
            wait();
        }
    } catch (const ANALYSIS::not_a_packet& error) {
        throw capture_error(name_, error.what());
    } catch (const std::system_error& error) {
        throw capture_error(name_, error.code().message());
    }
}

/// Moves what can be moved at once.
/// @return whether that was anything
bool extracting_tshark::move() {
    take_input();
    std::array<char, 65'536>
        buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): is read into
    const auto moved = process_.exchange(unsent_, buffer, false);
    unsent_.erase(0, moved.written);
    ended_ = moved.ended;
    output_.add({buffer.data(), moved.read});
    return moved.written != 0 || moved.read != 0 || moved.ended;
}

void extracting_tshark::take_input() {
    if (!awaits_input()) {
        return;
    }
    unsent_.resize(input_block);
    unsent_.resize(input_->read_available(unsent_));
    if (unsent_.empty() && input_->at_end()) {
        process_.close_input();
        input_closed_ = true;
    }
}

bool extracting_tshark::awaits_input() const {
    return input_ != nullptr && unsent_.empty() && !input_closed_;
}

void extracting_tshark::wait() {
    PLATFORM::piped_process::occasion wanted{.input = !unsent_.empty()};
    if (awaits_input()) {
        input_->announce();
        wanted.other = input_->ready();
    }
    process_.wait(wanted, longest_wait);
}

extraction_state extracting_tshark::finish() {
    if (const int status = process_.exit_status(); status != 0) {
        const auto complaint = complaint_in(process_.printed_errors());
        throw capture_error(name_, complaint.empty()
                                       ? "tshark ended with status " + std::to_string(status)
                                       : complaint);
    }
    return extraction_state::ended;
}

capture_content extracting_tshark::content() const {
    return read_protocol_statistics(statistics_);
}

}  // namespace KIVRA::TSHARK::REPLAY
