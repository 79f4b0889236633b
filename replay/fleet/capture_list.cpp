#include "replay/fleet/capture_list.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using complaint_handler = std::function<void(const std::string& why)>;

constexpr std::array<std::string_view, 6> suffixes_of_captures{".pcap", ".pcapng", ".cap",
                                                               ".ntar", ".snoop",  ".erf"};
constexpr std::array<std::string_view, 3> suffixes_of_compression{".gz", ".zst", ".lz4"};

/// In small letters.
std::string suffix_of(const fs::path& file) {
    std::string suffix = text_of(file.extension());
    std::ranges::transform(suffix, suffix.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return suffix;
}

/// The folders that are read, and what comes of them.
class folder_reader {
  public:
    folder_reader(fs::path folder, bool recursive, const complaint_handler& leave_out)
        : folder_(std::move(folder)), recursive_(recursive), leave_out_(leave_out) {}

    std::vector<listed_capture> captures() {
        if (const auto reason = read(folder_)) {
            throw read_error(folder_, reason);
        }
        while (!waiting_.empty()) {
            const auto folder = std::move(waiting_.back());
            waiting_.pop_back();
            if (const auto reason = read(folder)) {
                leave_out_(read_error(folder, reason).what());
            }
        }
        std::ranges::sort(found_, {}, &listed_capture::file);
        return std::move(found_);
    }

  private:
    static std::runtime_error read_error(const fs::path& folder, const std::error_code& reason) {
        return std::runtime_error("can't read " + text_of(folder) + ": " + reason.message());
    }

    /// @return why it can't be read to its end
    std::error_code read(const fs::path& folder) {
        std::error_code reason;
        for (fs::directory_iterator entry(folder, reason), end; !reason && entry != end;
             entry.increment(reason)) {
            take(*entry);
        }
        return reason;
    }

    void take(const fs::directory_entry& entry) {
        const auto name = entry.path().filename();
        std::error_code unreachable;
        if (is_hidden(name)) {
            return;
        }
        // Links to folders may lead round in circles.
        if (recursive_ && fs::is_directory(entry.symlink_status(unreachable))) {
            waiting_.push_back(entry.path());
        } else if (has_name_of_capture(name) && entry.is_regular_file(unreachable)) {
            found_.push_back({entry.path(), entry.path().lexically_relative(folder_)});
        }
    }

    fs::path folder_;
    bool recursive_;
    const complaint_handler& leave_out_;
    std::vector<fs::path> waiting_;
    std::vector<listed_capture> found_;
};

std::vector<listed_capture> captures_in(const fs::path& folder, bool recursive,
                                        const complaint_handler& leave_out) {
    auto found = folder_reader(folder, recursive, leave_out).captures();
    if (found.empty()) {
        throw std::runtime_error(text_of(folder) + " has no captures in it" +
                                 (recursive ? "" : " (--recursive looks into its folders, too)"));
    }
    return found;
}

/// Strict as to what UTF-8 is, as readers of the table are.
bool is_utf8(const std::string& text) {
    try {
        static_cast<void>(nlohmann::json(text).dump());
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
    return true;
}

/// With bytes that are not ASCII as "\xff".
std::string escaped(const std::string& text) {
    static constexpr std::string_view digits = "0123456789abcdef";
    constexpr unsigned char ascii_end = 0x80;
    std::string result;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < ascii_end) {
            result += letter;
        } else {
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xfU]};
        }
    }
    return result;
}

}  // namespace

bool has_name_of_capture(const fs::path& name) {
    fs::path file = name;
    if (std::ranges::count(suffixes_of_compression, suffix_of(file)) != 0) {
        file.replace_extension();
    }
    return !is_hidden(name) && std::ranges::count(suffixes_of_captures, suffix_of(file)) != 0;
}

bool is_hidden(const fs::path& name) {
    return text_of(name).starts_with('.');
}

std::optional<std::string> obstacle_to_naming(const fs::path& file) {
    const auto name = text_of(file);
    if (is_utf8(name)) {
        return std::nullopt;
    }
    return escaped(name) + " is left out: its name is not UTF-8";
}

std::vector<listed_capture> list_captures(const std::vector<fs::path>& places, bool recursive,
                                          const complaint_handler& leave_out) {
    std::vector<listed_capture> captures;
    for (const auto& place : places) {
        std::error_code unreachable;
        if (fs::is_directory(place, unreachable)) {
            const auto found = captures_in(place, recursive, leave_out);
            captures.insert(captures.end(), found.begin(), found.end());
        } else {
            captures.push_back({place, place.filename()});
        }
    }
    std::erase_if(captures, [&](const listed_capture& capture) {
        const auto obstacle = obstacle_to_naming(capture.file);
        if (obstacle) {
            leave_out(*obstacle);
        }
        return obstacle.has_value();
    });
    return captures;
}

}  // namespace KIVRA::TSHARK::REPLAY
