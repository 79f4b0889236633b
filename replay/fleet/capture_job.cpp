#include "replay/fleet/capture_job.h"

#include <array>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/console/console.h"
#include "platform/piped_process.h"
#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

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

/// Where a profile can't be written, the program does not say so.
void make_place_for(const fs::path& file) {
    try {
        fs::create_directories(file.parent_path());
        fs::remove(file);
    } catch (const fs::filesystem_error& error) {
        throw write_error(text_of(file), error.code().value());
    }
    if (const auto obstacle = PLATFORM::write_obstacle(file.parent_path())) {
        throw std::runtime_error("can't write " + text_of(file) + ": " + *obstacle);
    }
}

PLATFORM::piped_process start(const fs::path& program, const std::vector<std::string>& arguments) {
    try {
        return {program, arguments, PLATFORM::error_text::kept};
    } catch (const PLATFORM::process_not_started& error) {
        throw std::runtime_error("can't start " + text_of(program) + ": " +
                                 std::system_category().message(static_cast<int>(error.error())));
    }
}

std::optional<json> read_summary(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    auto summary = json::parse(stream, nullptr, false);
    return summary.is_object() ? std::optional(std::move(summary)) : std::nullopt;
}

}  // namespace

std::optional<fleet_row> run_capture(const capture_program& program, const capture_files& files,
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
    auto process = start(program.file, arguments);
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
    if (result.exit_status == status_of_obstacle) {
        throw std::runtime_error(result.error);
    }
    result.summary = read_summary(files.summary);
    return row_of(text_of(files.capture), result);
}

fs::path file_for(const fs::path& folder, fs::path name, const char* ending) {
    name += ending;
    return folder / name;
}

}  // namespace KIVRA::TSHARK::REPLAY
