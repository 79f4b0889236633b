#include "replay/input/extracted_capture.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

#include "replay/input/extraction/user_link_types.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

/// How long records of a live capture wait for what may still come beside them.
constexpr std::chrono::milliseconds patience{1'000};

}  // namespace

std::optional<trace_record> extracted_capture::next() {
    if (!process_) {
        // A stream can't be read again, should the layers not be enough.
        start(source_.file.empty() ? extraction_depth::everything : extraction_depth::layers);
    }
    while (true) {
        if (auto record = records_.next()) {
            found_records_ = true;
            return handed_out(std::move(*record));
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (ended_) {
            explain_user_link_type();
            return std::nullopt;
        }
        if (read_packet() != extraction_state::packet) {
            records_.let_go();
        }
    }
}

void extracted_capture::start(extraction_depth depth) {
    depth_ = depth;
    process_.reset();
    process_.emplace(source_, depth);
}

extraction_state extracted_capture::read_packet() {
    std::string text;
    extraction_state state{};
    extracted_packet packet;
    try {
        state = process_->read(text, patience);
        if (state == extraction_state::packet) {
            packet = packet_in(text);
        }
    } catch (const capture_error&) {
        // What was read before comes first.
        failure_ = std::current_exception();
        return extraction_state::ended;
    }
    ended_ = state == extraction_state::ended;
    if (state != extraction_state::packet) {
        return state;
    }
    // Behind another look, what was seen before comes again.
    if (packet.number > last_packet_) {
        if (packet.hides_messages && depth_ == extraction_depth::layers) {
            start(extraction_depth::everything);
        } else {
            add(std::move(packet));
        }
    }
    return state;
}

/// @throws capture_error for what tshark does not print
extracted_packet extracted_capture::packet_in(const std::string& text) const {
    try {
        return extract_messages(text);
    } catch (const std::runtime_error& error) {
        throw capture_error(source_.name, error.what());
    }
}

void extracted_capture::add(extracted_packet&& packet) {
    last_packet_ = packet.number;
    encrypted_rrc_ += packet.is_encrypted ? 1 : 0;
    user_link_type_ = packet.user_link_type ? packet.user_link_type : user_link_type_;
    for (auto& [format, payload, is_inside_rrc] : packet.messages) {
        records_.add({packet.timestamp, std::move(format), std::move(payload), is_inside_rrc,
                      packet.failure});
    }
}

/// @throws capture_error where nothing was found in a link type that nothing was said about
void extracted_capture::explain_user_link_type() const {
    const auto is_given = [this](int number) {
        return std::ranges::find(source_.options.user_link_types, number,
                                 &user_link_type::number) != source_.options.user_link_types.end();
    };
    if (!found_records_ && user_link_type_ && !is_given(*user_link_type_)) {
        throw capture_error(source_.name, advice_on_user_link_type(*user_link_type_));
    }
}

trace_record extracted_capture::handed_out(extracted_record record) {
    current_ = std::move(record);
    return {.timestamp = current_.timestamp,
            .format = current_.format,
            .payload = current_.payload,
            .carried_nas_is_record = true,
            .failure = current_.failure};
}

capture_content extracted_capture::content() const {
    auto content = process_ ? process_->content() : capture_content();
    content.encrypted_rrc = encrypted_rrc_;
    return content;
}

}  // namespace KIVRA::TSHARK::REPLAY
