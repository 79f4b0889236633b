/// What the built plug-in costs its host. What is compared is timed in turn, so that what else the
/// machine does meets all of it alike; each turn is a line, in nanoseconds. Working files are in
/// the current directory.
#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "analysis/tshark/pcapng_image.h"
#include "bench/bare_tshark.h"
#include "data/embedded_operators.h"
#include "platform/platform.h"
#include "replay/input/open_capture.h"
#include "replay/runner/plugin.h"
#include "sink/tshark_discovery.h"

namespace {

using namespace KIVRA::TSHARK;

constexpr auto profile_file = "profile.json";

constexpr auto usage =
    "plugin_costs data PLUGIN TSHARK_DIRECTORY PAIRS CAPTURE RECORD   a data call, bare tshark\n"
    "plugin_costs session PLUGIN TSHARK_DIRECTORY TURNS CAPTURE RECORD\n"
    "                                                 bare tshark, 50 data calls in a session\n"
    "plugin_costs init PLUGIN TSHARK_DIRECTORY TURNS                  first init, second init,\n"
    "                                                                 parsing the operators\n"
    "plugin_costs heap PLUGIN TSHARK_DIRECTORY                        bytes that the first and "
    "the\n"
    "                                                                 second context hold\n";

template <typename Work>
std::int64_t nanoseconds_of(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto taken = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::nanoseconds>(taken).count();
}

/// @param number counted from 1
REPLAY::trace_record record_of(const char* capture_file, const std::filesystem::path& tshark,
                               int number) {
    const auto source = REPLAY::open_capture(capture_file, tshark, {}, {});
    std::optional<REPLAY::trace_record> found;
    for (int i = 0; i < number; ++i) {
        found = source->next();
    }
    if (!found) {
        throw std::runtime_error("the capture has no such record");
    }
    return *found;
}

void run_record(REPLAY::plugin_sink& target, const REPLAY::trace_record& record) {
    target.submit(record, [](const REPLAY::trace_record&, const REPLAY::outcome& result) {
        if (result.failure) {
            throw std::runtime_error(result.failure->text);
        }
    });
}

void write_capture(const char* file, const REPLAY::trace_record& record) {
    PLATFORM::write_file(
        file, ANALYSIS::pcapng_head() +
                  ANALYSIS::pcapng_packet(record.format, record.payload, record.timestamp));
}

constexpr auto bare_capture = "bare.pcapng";
constexpr auto bare_output = "bare.json";

void compare_data_calls(const std::shared_ptr<const REPLAY::plugin>& loaded,
                        const char* tshark_directory, int pairs, const char* capture_file,
                        int record_number) {
    const auto tshark = SINK::tshark_executable(tshark_directory);
    const auto record = record_of(capture_file, tshark, record_number);
    write_capture(bare_capture, record);
    REPLAY::plugin_sink target(loaded, tshark_directory, tshark, profile_file);

    const auto data_call = [&] { run_record(target, record); };
    const auto bare = [&] { BENCH::run_bare_tshark(tshark, bare_capture, bare_output); };
    data_call();
    bare();
    for (int i = 0; i < pairs; ++i) {
        const auto data_time = nanoseconds_of(data_call);
        std::cout << data_time << ' ' << nanoseconds_of(bare) << std::endl;
    }
}

/// The session's start is not timed.
void compare_session(const std::shared_ptr<const REPLAY::plugin>& loaded,
                     const char* tshark_directory, int turns, const char* capture_file,
                     int record_number) {
    constexpr int calls_a_turn = 50;
    const auto tshark = SINK::tshark_executable(tshark_directory);
    const auto record = record_of(capture_file, tshark, record_number);
    write_capture(bare_capture, record);
    REPLAY::plugin_sink target(loaded, tshark_directory, tshark, profile_file, true);
    run_record(target, record);
    for (int i = 0; i < turns; ++i) {
        std::cout << nanoseconds_of(
            [&] { BENCH::run_bare_tshark(tshark, bare_capture, bare_output); });
        for (int call = 0; call < calls_a_turn; ++call) {
            std::cout << ' ' << nanoseconds_of([&] { run_record(target, record); });
        }
        std::cout << std::endl;
    }
}

/// The plug-in is loaded anew for each turn, and what a turn makes is gone before the next begins,
/// outside of the times.
void compare_inits(const char* plugin_file, const char* tshark_directory, int turns) {
    const auto tshark = SINK::tshark_executable(tshark_directory);
    for (int i = 0; i < turns; ++i) {
        const auto loaded = std::make_shared<const REPLAY::plugin>(plugin_file);
        std::optional<REPLAY::plugin_sink> first;
        std::optional<REPLAY::plugin_sink> second;
        const auto time_of = [&](std::optional<REPLAY::plugin_sink>& target) {
            return nanoseconds_of(
                [&] { target.emplace(loaded, tshark_directory, tshark, profile_file); });
        };
        const auto first_time = time_of(first);
        const auto second_time = time_of(second);
        nlohmann::json operators;
        const auto parse_time =
            nanoseconds_of([&] { operators = nlohmann::json::parse(DATA::embedded_operators()); });
        std::cout << first_time << ' ' << second_time << ' ' << parse_time << '\n';
    }
}

std::size_t heap_in_use() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void show_heap_of_contexts(const std::shared_ptr<const REPLAY::plugin>& loaded,
                           const char* tshark_directory) {
    const auto tshark = SINK::tshark_executable(tshark_directory);
    const auto before = heap_in_use();
    const REPLAY::plugin_sink first(loaded, tshark_directory, tshark, profile_file);
    const auto with_first = heap_in_use();
    const REPLAY::plugin_sink second(loaded, tshark_directory, tshark, profile_file);
    const auto with_second = heap_in_use();
    std::cout << with_first - before << ' ' << with_second - with_first << '\n';
}

int run(int count, char** arguments) {
    const std::string_view what = count > 1 ? arguments[1] : "";
    if (what == "data" && count == 7) {
        compare_data_calls(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3],
                           std::stoi(arguments[4]), arguments[5], std::stoi(arguments[6]));
    } else if (what == "session" && count == 7) {
        compare_session(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3],
                        std::stoi(arguments[4]), arguments[5], std::stoi(arguments[6]));
    } else if (what == "init" && count == 5) {
        compare_inits(arguments[2], arguments[3], std::stoi(arguments[4]));
    } else if (what == "heap" && count == 4) {
        show_heap_of_contexts(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3]);
    } else {
        std::cerr << usage;
        return 2;
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return run(count, arguments);
    } catch (const std::exception& error) {
        std::cerr << "plugin_costs: " << error.what() << '\n';
        return 1;
    }
}
