#include "analysis/tshark/running_tshark.h"

#include <utility>

namespace KIVRA::TSHARK::ANALYSIS {

void running_tshark::send_ahead(const sink_context& context, std::string packet) {
    add(std::move(packet));
    if (!session_) {
        start(context);
    }
}

void running_tshark::add(std::string packet) {
    packets_.push_back(std::move(packet));
    if (session_) {
        session_->send(packets_.back());
    }
}

void running_tshark::dissect(const sink_context& context, const std::string& packet,
                             const output_handler& handler) {
    if (packets_.empty()) {
        add(packet);
    }
    auto output = receive(context);
    packets_.pop_front();
    if (output) {
        handler(std::move(*output));
    } else {
        single_.dissect(context, packet, handler);
    }
}

/// Nothing when the record is to have a tshark of its own.
std::optional<std::string> running_tshark::receive(const sink_context& context) {
    if (!session_) {
        start(context);
    }
    if (!session_) {
        return std::nullopt;
    }
    try {
        return session_->receive();
    } catch (const session_broken&) {
        session_.reset();
        context.log(KIVRA_LOG_INFORMATION,
                    "tshark session ended, record is dissected by a tshark of its own");
        return std::nullopt;
    }
}

/// Starts tshark and sends what was sent to the former one.
void running_tshark::start(const sink_context& context) {
    try {
        session_.emplace(context.tshark_executable);
    } catch (const PLATFORM::process_not_started&) {
        // The tshark of the record's own tells, in the way that it always does.
        return;
    }
    for (const auto& packet : packets_) {
        session_->send(packet);
    }
}

}  // namespace KIVRA::TSHARK::ANALYSIS
