#include "analysis/tshark/tshark_session.h"

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/tshark/pcapng_image.h"
#include "analysis/tshark/tshark_arguments.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

/// An EMM status (3GPP TS 24.301, 8.2.14), which passes the filter and means nothing to anybody.
const std::string& marker() {
    static constexpr std::array<std::uint8_t, 3> emm_status{0x07, 0x60, 0x16};
    static const std::string packet = pcapng_packet("nas-eps", emm_status, 0);
    return packet;
}

/// The capture comes through the standard input, and each packet goes out at once.
std::vector<std::string> arguments() {
    auto list = tshark_arguments("-");
    list.emplace_back("-l");
    return list;
}

/// What tshark prints for a capture from which its filter passes nothing.
constexpr const char* no_packets = "[\n\n\n]\n";

}  // namespace

tshark_session::tshark_session(const std::filesystem::path& tshark)
    : process_(tshark, arguments()), input_(pcapng_head()) {}

void tshark_session::send(const std::string& packet) {
    queue(packet);
    awaited_.push_back(packets_sent_);
    if (awaited_.size() > 1) {
        // Somebody sends ahead: tshark can begin with it. A single record goes with its marker.
        exchange({}, false);
    }
}

void tshark_session::queue(const std::string& packet) {
    input_ += packet;
    ++packets_sent_;
}

std::string tshark_session::receive() {
    const std::uint64_t number = awaited_.front();
    while (true) {
        if (auto output = received(number)) {
            awaited_.pop_front();
            return std::move(*output);
        }
        if (last_marker_ < number) {
            queue(marker());
            last_marker_ = packets_sent_;
        }
        wait();
    }
}

/// What there is for a record; nothing while that is still to come.
std::optional<std::string> tshark_session::received(std::uint64_t number) {
    read_lookahead(number);
    if (!lookahead_) {
        return std::nullopt;
    }
    if (lookahead_->number == number) {
        return std::exchange(lookahead_, std::nullopt)->text;
    }
    return no_packets;
}

/// Passes over the markers before the record.
void tshark_session::read_lookahead(std::uint64_t number) {
    try {
        while (!lookahead_ || lookahead_->number < number) {
            lookahead_ = output_.next();
            if (!lookahead_) {
                return;
            }
        }
    } catch (const not_a_packet&) {
        throw session_broken();
    }
    if (lookahead_->number > packets_sent_) {
        throw session_broken();
    }
}

PLATFORM::piped_process::transfer tshark_session::exchange(std::span<char> buffer, bool wait) {
    const auto moved = process_.exchange(std::string_view(input_).substr(written_), buffer, wait);
    written_ += moved.written;
    if (written_ == input_.size()) {
        input_.clear();
        written_ = 0;
    }
    return moved;
}

void tshark_session::wait() {
    std::array<char, 65'536>
        buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): is read into
    const auto moved = exchange(buffer, true);
    if (moved.read == 0 && moved.ended) {
        throw session_broken();
    }
    output_.add({buffer.data(), moved.read});
}

}  // namespace KIVRA::TSHARK::ANALYSIS
