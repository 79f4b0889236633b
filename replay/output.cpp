#include "replay/output.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <system_error>

#include "platform/console/console.h"
#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

std::string_view environment(const char* name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// Whether they are, or would be once they are written.
bool are_one_file(const std::filesystem::path& file, const std::filesystem::path& other) {
    if (file.empty() || other.empty()) {
        return false;
    }
    std::error_code missing;
    return std::filesystem::equivalent(file, other, missing) ||
           std::filesystem::weakly_canonical(std::filesystem::absolute(file)) ==
               std::filesystem::weakly_canonical(std::filesystem::absolute(other));
}

}  // namespace

output::output(const std::filesystem::path& file) : path_(file) {
    if (file.empty()) {
        return;
    }
    file_.emplace(file, std::ios::binary | std::ios::trunc);
    if (!file_->is_open()) {
        throw write_error(text_of(file), errno);
    }
}

void refuse_to_overwrite(const std::filesystem::path& capture,
                         const std::vector<std::filesystem::path>& targets) {
    for (const auto& target : targets) {
        std::error_code missing;
        if (std::filesystem::equivalent(capture, target, missing)) {
            throw std::runtime_error(text_of(target) + " is a capture to read, not to write");
        }
    }
}

void refuse_same_targets(const std::vector<std::filesystem::path>& targets) {
    for (auto target = targets.begin(); target != targets.end(); ++target) {
        if (std::any_of(targets.begin(), target,
                        [&](const auto& other) { return are_one_file(other, *target); })) {
            throw std::runtime_error("can't write two files to " + text_of(*target));
        }
    }
}

std::ostream& output::stream() {
    return file_ ? static_cast<std::ostream&>(*file_) : std::cout;
}

bool output::takes_colour() const {
    return !file_ && PLATFORM::is_terminal(PLATFORM::standard_stream::output) &&
           environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

std::size_t output::columns() const {
    return file_ ? 0 : PLATFORM::output_columns();
}

void output::flush() {
    // A write that has failed before has left its reason.
    if (stream()) {
        errno = 0;
    }
    if (stream().flush()) {
        return;
    }
    if (PLATFORM::tells_of_missing_reader(errno)) {
        throw reader_gone();
    }
    throw write_error(file_ ? text_of(path_) : "the report", errno);
}

}  // namespace KIVRA::TSHARK::REPLAY
