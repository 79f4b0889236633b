#include "replay/fleet/capture_job.h"

#include <array>
#include <chrono>
#include <exception>
#include <fstream>
#include <string_view>
#include <utility>

#include "platform/piped_process.h"
#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

namespace fs = std::filesystem;
using json = nlohmann::json;

/// The first line of what the program complained of, without its name.
std::string first_complaint(std::string_view text) {
    constexpr std::string_view name = "kivra-replay: ";
    text = text.substr(0, text.find_first_of("\r\n"));
    return std::string(text.starts_with(name) ? text.substr(name.size()) : text);
}

void make_place_for(const fs::path& file) {
    if (file.has_parent_path()) {
        fs::create_directories(file.parent_path());
    }
    fs::remove(file);
}

std::optional<json> read_summary(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    auto summary = json::parse(stream, nullptr, false);
    return summary.is_object() ? std::optional(std::move(summary)) : std::nullopt;
}

}  // namespace

std::optional<capture_result> run_capture(const capture_program& program,
                                          const capture_files& files,
                                          const std::function<bool()>& given_up) {
    make_place_for(files.summary);
    make_place_for(files.profile);
    auto arguments = program.arguments;
    if (!files.page.empty()) {
        make_place_for(files.page);
        arguments.push_back("--report=" + text_of(files.page));
    }
    for (const auto& argument :
         {std::string("--summary"), text_of(files.summary), std::string("--profile"),
          text_of(files.profile), std::string("--"), text_of(files.capture)}) {
        arguments.push_back(argument);
    }
    PLATFORM::piped_process process(program.file, arguments, PLATFORM::error_text::kept);
    process.close_input();
    std::array<char, 4096> unread{};
    while (!process.exchange({}, unread, false).ended) {
        if (given_up()) {
            return std::nullopt;
        }
        process.wait({}, std::chrono::milliseconds(100));
    }
    capture_result result{.exit_status = process.exit_status(), .error = {}, .summary = {}};
    if (given_up()) {
        return std::nullopt;
    }
    result.error = first_complaint(process.printed_errors());
    result.summary = read_summary(files.summary);
    return result;
}

std::optional<fleet_row> row_of_run(const capture_program& program, const capture_files& files,
                                    const std::function<bool()>& given_up) {
    constexpr int not_started = 2;
    capture_result result{.exit_status = not_started, .error = {}, .summary = {}};
    try {
        auto ended = run_capture(program, files, given_up);
        if (!ended) {
            return std::nullopt;
        }
        result = std::move(*ended);
    } catch (const std::exception& error) {
        result.error = error.what();
    }
    return row_of(text_of(files.capture), result);
}

fs::path file_for(const fs::path& folder, fs::path name, const char* ending) {
    name += ending;
    return folder / name;
}

}  // namespace KIVRA::TSHARK::REPLAY
