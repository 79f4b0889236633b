#include "replay/input/extraction/protocol_statistics.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

namespace {

struct row {
    std::size_t indent = 0;
    std::string_view name;
    std::uint64_t packets = 0;
};

std::optional<row> read_row(std::string_view line) {
    constexpr std::string_view mark = " frames:";
    const auto begin = line.find_first_not_of(' ');
    const auto count = line.find(mark);
    if (begin == std::string_view::npos || count == std::string_view::npos || count <= begin) {
        return std::nullopt;
    }
    row found{begin, line.substr(begin, line.find(' ', begin) - begin)};
    const auto digits = line.substr(count + mark.size());
    std::from_chars(digits.data(), digits.data() + digits.size(), found.packets);
    return found;
}

class row_collection {
  public:
    void add(const row& next) {
        while (!open_.empty() && open_.back().indent >= next.indent) {
            open_.pop_back();
        }
        const bool is_inside_itself =
            std::ranges::find(open_, next.name, &row::name) != open_.end();
        if (open_.empty()) {
            content_.packets += next.packets;
        }
        // Every packet has a frame.
        if (!is_inside_itself && next.name != "frame") {
            count(next);
        }
        open_.push_back(next);
    }

    capture_content take() && { return std::move(content_); }

  private:
    void count(const row& next) {
        const auto known = std::ranges::find(content_.protocols, next.name, &protocol_count::name);
        if (known == content_.protocols.end()) {
            content_.protocols.push_back({std::string(next.name), next.packets});
        } else {
            known->packets += next.packets;
        }
    }

    capture_content content_;
    /// The rows that the next one may stand below.
    std::vector<row> open_;
};

}  // namespace

capture_content read_protocol_statistics(std::string_view text) {
    row_collection rows;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        if (const auto found = read_row(text.substr(0, end))) {
            rows.add(*found);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::move(rows).take();
}

}  // namespace KIVRA::TSHARK::REPLAY
