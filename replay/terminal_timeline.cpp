#include "replay/terminal_timeline.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

#include "replay/report/formatting.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr std::size_t most_spans = 4096;
constexpr std::size_t most_columns = 160;
constexpr int indent_width = 4;
constexpr int name_width = 28;

enum happening : std::uint8_t {
    connected = 1,
    idle = 2,
    attach = 4,
    update = 8,
    page = 16,
    release = 32,
};

}  // namespace

terminal_timeline::terminal_timeline(std::ostream& out, std::size_t columns)
    : out_(out),
      columns_(std::clamp(columns, least_columns, most_columns) - indent_width - name_width),
      spans_(most_spans) {}

void terminal_timeline::add(std::uint64_t number, const trace_record& record,
                            const outcome& result) {
    const std::uint64_t now = record.timestamp;
    connections_.add(number, record, result);
    begin_ = number == 1 ? now : begin_;
    if (result.message.name.starts_with("Attach request")) {
        note(attach, now, now);
    }
    switch (result.message.event) {
        case message_event::connection_request:
            if (is_idle_) {
                note(idle, idle_since_, now);
            }
            is_idle_ = false;
            break;
        case message_event::connection_end:
            if (const auto& last = connections_.last(); last && last->last_record == number) {
                note(connected, last->begin, last->end);
            }
            note(release, now, now);
            is_idle_ = true;
            idle_since_ = now;
            break;
        case message_event::update_request:
            note(update, now, now);
            break;
        case message_event::paging:
            note(page, now, now);
            break;
        default:
            break;
    }
}

void terminal_timeline::end(const capture_content& /*captures*/) {
    const auto last = connections_.end();
    if (const auto& open = connections_.current()) {
        note(connected, open->begin, last);
    } else if (is_idle_) {
        note(idle, idle_since_, last);
    }
    const std::size_t used = span_of(last) + 1;
    std::vector<std::uint8_t> columns(std::min(columns_, used));
    for (std::size_t span = 0; span < used; ++span) {
        columns[span * columns.size() / used] |= spans_[span];
    }
    if (std::ranges::all_of(columns, [](std::uint8_t column) { return column == 0; })) {
        return;
    }
    out_ << "\ntimeline from " << iso_8601(begin_) << " to " << iso_8601(last) << '\n';
    print_line("connected", columns, connected, '#');
    print_line("idle", columns, idle, '-');
    print_line("attach request", columns, attach, '^');
    print_line("tracking area update", columns, update, '^');
    print_line("paging", columns, page, '^');
    print_line("release", columns, release, '^');
}

/// Time stamps may go back behind the first one; what happened then stands at the beginning.
std::size_t terminal_timeline::span_of(std::uint64_t time) {
    const auto since_begin = time - std::min(begin_, time);
    while (since_begin / span_ >= most_spans) {
        double_spans();
    }
    return since_begin / span_;
}

void terminal_timeline::double_spans() {
    for (std::size_t span = 0; span < most_spans / 2; ++span) {
        spans_[span] = spans_[2 * span] | spans_[2 * span + 1];
    }
    std::fill(spans_.begin() + most_spans / 2, spans_.end(), std::uint8_t{0});
    span_ *= 2;
}

void terminal_timeline::note(std::uint8_t what, std::uint64_t from, std::uint64_t to) {
    // The later one first: it may double the spans.
    const auto last = span_of(std::max(from, to));
    for (std::size_t span = span_of(from); span <= last; ++span) {
        spans_[span] |= what;
    }
}

void terminal_timeline::print_line(const char* name, const std::vector<std::uint8_t>& columns,
                                   std::uint8_t what, char mark) {
    std::string line;
    for (const auto column : columns) {
        line += (column & what) != 0 ? mark : ' ';
    }
    const auto end = line.find_last_not_of(' ');
    if (end != std::string::npos) {
        out_ << std::string(indent_width, ' ') << std::left << std::setw(name_width) << name
             << line.substr(0, end + 1) << '\n';
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
