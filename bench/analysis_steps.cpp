// The capture that tshark reads, and the intake of what it writes.
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "analysis/output_processing.h"
#include "analysis/tshark/pcapng_image.h"
#include "bench/sample.h"
#include "context/sink_context.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

void make_pcapng_image(benchmark::State& state) {
    // About as long as an attach accept within its RRC message.
    const std::vector<std::uint8_t> payload(150, 0x5A);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(pcapng_packet("lte_rrc.dl_dcch", payload, 1'764'000'000'000'000));
    }
}
BENCHMARK(make_pcapng_image);

void number_names(benchmark::State& state, const char* sample) {
    const std::string output = BENCH::sample_output(sample);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(number_repeated_names(output));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(output.size()));
}
BENCHMARK_CAPTURE(number_names, largest_dissection, BENCH::largest_dissection);

void process_output(benchmark::State& state, const char* sample) {
    sink_context context(nullptr, nullptr, "tshark", "output-that-never-exists", {});
    const std::string output = BENCH::sample_output(sample);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(ANALYSIS::process_output(context, output));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(output.size()));
}
BENCHMARK_CAPTURE(process_output, largest_dissection, BENCH::largest_dissection);
BENCHMARK_CAPTURE(process_output, attach_accept, BENCH::attach_accept);

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
