// The operator list, the search in dissections, and the parsers.
#include <algorithm>
#include <cstdint>

#include <benchmark/benchmark.h>

#include "bench/sample.h"
#include "data/embedded_operators.h"
#include "parser/operator_database.h"
#include "parser/packet_document.h"
#include "parser/parser_registry.h"
#include "parser/tree_search.h"

namespace KIVRA::TSHARK::PARSER {
namespace {

void load_operator_list(benchmark::State& state) {
    while (state.KeepRunning()) {
        auto operators = load_operators(DATA::embedded_operators());
        benchmark::DoNotOptimize(operators);
        // Freeing it is not part of the loading.
        state.PauseTiming();
        operators.clear();
        state.ResumeTiming();
    }
}
BENCHMARK(load_operator_list);

void find_network(benchmark::State& state, std::int32_t mcc, std::int32_t mnc) {
    const auto operators = load_operators(DATA::embedded_operators());
    if (find_operator(operators, mcc, mnc) == nullptr) {
        state.SkipWithError("the network is not in the list");
    }
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(find_operator(operators, mcc, mnc));
    }
}
// The list's first network, and the last one before the entry that ends every search.
BENCHMARK_CAPTURE(find_network, first, 289, 67);
BENCHMARK_CAPTURE(find_network, last, 704, 3);

void search_largest_dissection(benchmark::State& state, const char* field) {
    const auto packet = BENCH::sample_packet(BENCH::largest_dissection);
    const auto& dissection = layer(packet, "lte_rrc");
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(find_in_tree(dissection, field));
    }
}
BENCHMARK_CAPTURE(search_largest_dissection, field, "lte-rrc.drx_InactivityTimer");
BENCHMARK_CAPTURE(search_largest_dissection, no_such_field, "no such field");

void parse_packet(benchmark::State& state, const char* sample) {
    const auto parsers = make_parser_registry(nullptr, nullptr);
    const auto packet = BENCH::sample_packet(sample);
    const auto parser = std::ranges::find_if(
        parsers, [&packet](const auto& candidate) { return candidate->accepts(packet); });
    while (state.KeepRunning()) {
        nlohmann::json result;
        (*parser)->parse(packet, result);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK_CAPTURE(parse_packet, largest_dissection, BENCH::largest_dissection);
BENCHMARK_CAPTURE(parse_packet, attach_accept, BENCH::attach_accept);

}  // namespace
}  // namespace KIVRA::TSHARK::PARSER
