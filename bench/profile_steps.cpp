// The parameter file, written into memory.
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "context/sink_context.h"
#include "profile/parameter_file.h"

namespace KIVRA::TSHARK::PROFILE {
namespace {

void write_profile(benchmark::State& state) {
    const std::filesystem::path file = "/dev/shm/kivra-profile-benchmark.json";
    sink_context context(nullptr, nullptr, "tshark", "output-that-never-exists", file);
    while (state.KeepRunning()) {
        context.texts = {"00000101", "01000111", "100", "32", "2.56", "30", "10"};
        write_parameter_file(context);
    }
    if (!std::filesystem::remove(file)) {
        state.SkipWithError("no parameter file was written");
    }
}
BENCHMARK(write_profile);

}  // namespace
}  // namespace KIVRA::TSHARK::PROFILE
