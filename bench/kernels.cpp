#include <cstdint>
#include <cstdlib>
#include <memory>
#include <omp.h>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "neighbours/neighbour_index.h"
#include "neighbours/sptree.h"
#include "stats/kernels/pair_kernels.h"
#include "stats/sliced_attraction.h"
#include "stats/sparse_affinities.h"
#include "stats/sparse_forces.h"
#include "stats/tree_repulsion.h"
#include "util/elementary.h"
#include "util/instruction_set.h"
#include "util/number_field.h"

#include "bench/clustered_points.h"

/// Each kernel by itself. "items" are pairs, tree queries, entries, rows or fields; the argument
/// `set` is 0 for scalar code, 1 for AVX2, 2 for AVX-512.

namespace ovik {
namespace {

constexpr double kTheta = 0.5;

bool has_set(benchmark::State& state, InstructionSet set) {
    if (set > best_instruction_set()) {
        state.SkipWithError("this processor is without it");
        return false;
    }
    return true;
}

/// A two-dimensional embedding by columns, as the kernels take it.
struct Columns {
    explicit Columns(std::size_t N) : values(2 * padded_to_panels(N)), view{values.data(), N, 2} {
        const std::vector<double> points = bench::clustered_points(N, 2);
        for (std::size_t i = 0; i < points.size(); ++i) {
            values[i % 2 * padded_to_panels(N) + i / 2] = points[i];
        }
    }

    std::vector<double> values;
    EmbeddingColumns view;
};

constexpr std::size_t kRowsOfBlock = 128;
constexpr std::size_t kColumnsOfBlock = 64;

/// The forces of the pairs of a block, as a run has them one after the other, or their costs.
void exact_block(benchmark::State& state) {
    const auto set = static_cast<InstructionSet>(state.range(0));
    if (!has_set(state, set)) {
        return;
    }
    constexpr std::size_t kPoints = 2000;
    const Columns Y(kPoints);
    const std::vector<double> P(kPoints * kPoints, 1.0 / kPoints / kPoints);
    std::vector<double> forces(2 * kPoints, 0.0);
    std::vector<double> costs(kPoints, 0.0);
    const std::vector<std::uint64_t> significant(kPoints / kPanelWidth * words_per_panel(kPoints),
                                                 ~std::uint64_t{0});
    const PairKernels& kernels = pair_kernels(set);
    const bool cost = state.range(1) != 0;
    std::size_t column = kRowsOfBlock;
    for (auto _ : state) {
        const PairBlock block = {0, kRowsOfBlock, column, column + kColumnsOfBlock};
        if (cost) {
            kernels.add_costs(Y.view, block, {P.data(), significant.data(), costs.data()});
        } else {
            kernels.add_forces(Y.view, block, {1e5, P.data(), forces.data()});
        }
        column += kColumnsOfBlock;
        column = column + kColumnsOfBlock > kPoints ? kRowsOfBlock : column;
        benchmark::DoNotOptimize(forces.data());
        benchmark::DoNotOptimize(costs.data());
    }
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(kRowsOfBlock * kColumnsOfBlock));
}

BENCHMARK(exact_block)->ArgNames({"set", "cost"})->ArgsProduct({{0, 1, 2}, {0, 1}});

/// Similarities of the pairs of eight rows with 2000 points, rounded and added up.
void rounded_similarities(benchmark::State& state) {
    const auto set = static_cast<InstructionSet>(state.range(0));
    if (!has_set(state, set)) {
        return;
    }
    constexpr std::size_t kPoints = 2000;
    const Columns Y(kPoints);
    const std::vector<double> shifts(kPoints, 1.5 * 0x1p16);
    const std::vector<double> half_units(kPoints, 0x1p-37);
    std::vector<double> sums(kPoints, 0.0);
    const auto ties = std::make_unique<bool[]>(kPoints);
    for (auto _ : state) {
        pair_kernels(set).add_rounded_similarities(
            Y.view, 0, {shifts.data(), half_units.data()}, {sums.data(), ties.get()});
        benchmark::DoNotOptimize(sums.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPoints * kPanelWidth));
}

BENCHMARK(rounded_similarities)->ArgName("set")->DenseRange(0, 2);

void logarithms(benchmark::State& state) {
    const auto set = static_cast<InstructionSet>(state.range(0));
    if (!has_set(state, set)) {
        return;
    }
    std::vector<double> values(1000);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = 0.001 + static_cast<double>(i);
    }
    std::vector<double> results(values.size());
    for (auto _ : state) {
        pair_kernels(set).logarithms(values.data(), values.size(), results.data());
        benchmark::DoNotOptimize(results.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

BENCHMARK(logarithms)->ArgName("set")->DenseRange(0, 2);

/// Exponentials as affinities are made of, by the C library or the same everywhere.
void exponentials(benchmark::State& state) {
    const auto set = static_cast<InstructionSet>(state.range(0));
    if (!has_set(state, set)) {
        return;
    }
    limit_instruction_set(set);
    std::vector<double> arguments(1000);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] = -0.0137 * static_cast<double>(i);
    }
    const Elementary& elementary =
        state.range(1) != 0 ? portable_elementary() : platform_elementary();
    std::vector<double> values(arguments.size());
    for (auto _ : state) {
        values = arguments;
        elementary.exponentials(values.data(), values.size());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
    limit_instruction_set(best_instruction_set());
}

BENCHMARK(exponentials)->ArgNames({"set", "portable"})->ArgsProduct({{0, 1, 2}, {0, 1}});

void build_tree(benchmark::State& state) {
    const auto N = static_cast<std::size_t>(state.range(0));
    const std::vector<double> Y = bench::clustered_points(N, 2);
    for (auto _ : state) {
        const SPTree tree(2, Y.data(), static_cast<unsigned int>(N));
        benchmark::DoNotOptimize(&tree);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(build_tree)->Arg(5000)->Arg(50000)->UseRealTime()->Unit(benchmark::kMillisecond);

/// Gradient and cost with fifty entries per row; 0 entries leave tree and repulsion alone.
void barnes_hut_iteration(benchmark::State& state) {
    const auto set = static_cast<InstructionSet>(state.range(2));
    if (!has_set(state, set)) {
        return;
    }
    const auto N = static_cast<std::size_t>(state.range(0));
    const auto entries = static_cast<std::size_t>(state.range(1));
    const std::vector<double> Y = bench::clustered_points(N, 2);
    std::vector<unsigned int> row_P;
    std::vector<unsigned int> col_P;
    for (std::size_t n = 0; n <= N; ++n) {
        row_P.push_back(static_cast<unsigned int>(n * entries));
        for (std::size_t i = 1; n < N && i <= entries; ++i) {
            col_P.push_back(static_cast<unsigned int>((n + 20 * i) % N));
        }
    }
    const std::vector<double> val_P(col_P.size() + 1, 1.0 / static_cast<double>(N));
    SlicedMatrix P({row_P.data(), col_P.data(), val_P.data()}, N, 2);
    std::vector<double> gradient(2 * N);
    limit_instruction_set(set);
    SlicedAttraction attraction(std::move(P), 2, platform_elementary().log);
    SparseForces forces(N, 2, std::make_unique<TreeRepulsion>(N, 2, kTheta));
    for (auto _ : state) {
        benchmark::DoNotOptimize(forces.costAndGradient(attraction, Y.data(), gradient.data()));
    }
    limit_instruction_set(best_instruction_set());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(barnes_hut_iteration)
    ->ArgNames({"rows", "entries", "set"})
    ->ArgsProduct({{5000}, {0, 50, 150}, {0, 1, 2}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void neighbour_similarities(benchmark::State& state) {
    const auto N = static_cast<std::size_t>(state.range(0));
    const std::vector<double> points = bench::clustered_points(N, 50);
    for (auto _ : state) {
        std::srand(11);
        benchmark::DoNotOptimize(neighbour_affinities(points.data(), N, 50, 30.0, 90));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(neighbour_similarities)->Arg(5000)->UseRealTime()->Unit(benchmark::kMillisecond);

void read_numbers(benchmark::State& state) {
    const NumberReader numbers;
    const std::vector<std::string> fields = {"-0.731254", "12.5", "1e-7", "0", "3.14159265358979"};
    for (auto _ : state) {
        for (const std::string& field : fields) {
            benchmark::DoNotOptimize(numbers.read(field.c_str(), field.c_str() + field.size()));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fields.size()));
}

BENCHMARK(read_numbers);

}  // namespace
}  // namespace ovik

BENCHMARK_MAIN();
