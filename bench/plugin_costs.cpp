/// What the built plug-in costs its host. Two ways to a result are timed in turn, so that what else
/// the machine does meets both alike; each pair is a line, in nanoseconds. Working files are in the
/// current directory.
#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
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
#include "replay/input/capture.h"
#include "replay/runner/plugin.h"
#include "sink/tshark_discovery.h"

namespace {

using namespace KIVRA::TSHARK;

constexpr auto profile_file = "profile.json";

constexpr auto usage =
    "plugin_costs data PLUGIN TSHARK_DIRECTORY PAIRS CAPTURE RECORD   a data call, bare tshark\n"
    "plugin_costs init PLUGIN TSHARK_DIRECTORY PAIRS                  init, parsing the operators\n"
    "plugin_costs heap PLUGIN TSHARK_DIRECTORY                        bytes that a context holds\n";

template <typename Work>
std::int64_t nanoseconds_of(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto taken = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::nanoseconds>(taken).count();
}

/// @param number counted from 1
REPLAY::trace_record record_of(REPLAY::capture& source, int number) {
    std::optional<REPLAY::trace_record> found;
    for (int i = 0; i < number; ++i) {
        found = source.next();
    }
    if (!found) {
        throw std::runtime_error("the capture has no such record");
    }
    return *found;
}

void compare_data_calls(const std::shared_ptr<const REPLAY::plugin>& loaded,
                        const char* tshark_directory, int pairs, const char* capture_file,
                        int record_number) {
    REPLAY::capture source(capture_file);
    const auto record = record_of(source, record_number);
    constexpr auto image = "bare.pcapng";
    PLATFORM::write_file(
        image, ANALYSIS::pcapng_head() +
                   ANALYSIS::pcapng_packet(record.format, record.payload, record.timestamp));
    const auto tshark = SINK::tshark_executable(tshark_directory);
    REPLAY::plugin_sink target(loaded, tshark_directory, profile_file);

    const auto data_call = [&] {
        if (const auto outcome = target.run(record); outcome.failure) {
            throw std::runtime_error(outcome.failure->text);
        }
    };
    const auto bare = [&] { BENCH::run_bare_tshark(tshark, image, "bare.json"); };
    data_call();
    bare();
    for (int i = 0; i < pairs; ++i) {
        const auto data_time = nanoseconds_of(data_call);
        std::cout << data_time << ' ' << nanoseconds_of(bare) << std::endl;
    }
}

/// What either makes is gone before the next begins, outside of the times.
void compare_inits(const std::shared_ptr<const REPLAY::plugin>& loaded,
                   const char* tshark_directory, int pairs) {
    for (int i = 0; i < pairs; ++i) {
        std::optional<REPLAY::plugin_sink> target;
        const auto init_time =
            nanoseconds_of([&] { target.emplace(loaded, tshark_directory, profile_file); });
        target.reset();
        nlohmann::json operators;
        const auto parse_time =
            nanoseconds_of([&] { operators = nlohmann::json::parse(DATA::embedded_operators()); });
        std::cout << init_time << ' ' << parse_time << '\n';
    }
}

std::size_t heap_in_use() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

std::size_t heap_of_context(const std::shared_ptr<const REPLAY::plugin>& loaded,
                            const char* tshark_directory) {
    // The first one pays for what a process does once.
    std::optional<REPLAY::plugin_sink> first(std::in_place, loaded, tshark_directory, profile_file);
    first.reset();
    const auto before = heap_in_use();
    const REPLAY::plugin_sink target(loaded, tshark_directory, profile_file);
    return heap_in_use() - before;
}

int run(int count, char** arguments) {
    const std::string_view what = count > 1 ? arguments[1] : "";
    if (what == "data" && count == 7) {
        compare_data_calls(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3],
                           std::stoi(arguments[4]), arguments[5], std::stoi(arguments[6]));
    } else if (what == "init" && count == 5) {
        compare_inits(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3],
                      std::stoi(arguments[4]));
    } else if (what == "heap" && count == 4) {
        std::cout << heap_of_context(std::make_shared<REPLAY::plugin>(arguments[2]), arguments[3])
                  << '\n';
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
