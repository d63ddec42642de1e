#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/mesh_potential.h"
#include "stats/sliced_attraction.h"
#include "stats/sparse_forces.h"
#include "stats/tree_repulsion.h"
#include "util/work_memory_error.h"

#include "tests/support/engine_run.h"
#include "tests/support/random_points.h"

/// Counts what is allocated while embeddings are evaluated one after the other, and lets memory run
/// out in between. A program of its own: it takes the place of the allocation functions.

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);

namespace {

std::atomic<long> allocations{0};

/// Allocations of this size and more are work arrays.
constexpr std::size_t kLarge = 100'000;

/// Of the large allocations to come, which one fails; none below 0.
std::atomic<long> failing{-1};

}  // namespace

// The library's operator new calls malloc.
extern "C" void* malloc(std::size_t size) {
    ++allocations;
    if (size >= kLarge && failing >= 0 && failing-- == 0) {
        return nullptr;
    }
    return __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}

namespace ovik {
namespace {

TEST(AllocationCount, SeesAllocations) {
    const long before = allocations;
    const std::vector<double> some(100);
    EXPECT_GT(allocations, before);
    EXPECT_EQ(some[99], 0.0);
}

TEST(SparseForces, AllocateNothingAfterTheFirstEmbedding) {
    constexpr std::size_t kCount = 40000;
    std::vector<unsigned int> row_P;
    std::vector<unsigned int> col_P;
    for (unsigned int n = 0; n <= kCount; ++n) {
        row_P.push_back(n);
        col_P.push_back((n + 1) % kCount);
    }
    const std::vector<double> val_P(kCount, 1.0 / kCount);
    const SparseMatrixView P{row_P.data(), col_P.data(), val_P.data()};
    SlicedAttraction attraction(SlicedMatrix(P, kCount, 2), 2, platform_elementary().log);
    const std::vector<double> Y = test::random_values(2 * kCount, 71, 10.0);
    // Coincident points, and some too near for one grid.
    std::vector<double> other(2 * kCount, 1.0);
    other[7] = 1e9;
    other[8] = 1.0 + 1e-15;
    std::vector<double> dY(2 * kCount);
    SparseForces forces(kCount, 2, std::make_unique<TreeRepulsion>(kCount, 2, 0.5));
    double cost = forces.costAndGradient(attraction, Y.data(), dY.data());
    const long before = allocations;
    for (int i = 0; i < 10; ++i) {
        attraction.matrix().multiply(2.0);
        cost += forces.costAndGradient(attraction, i % 2 == 0 ? other.data() : Y.data(), dY.data());
        forces.gradient(attraction, Y.data(), dY.data());
        cost += forces.cost(attraction, Y.data());
    }
    EXPECT_EQ(allocations, before);
    EXPECT_GT(cost, 0.0);
}

/// The potential of one charge on a mesh of 150 x 150 cells.
std::vector<double> potential_of(MeshPotential& potential) {
    potential.lay(150, 150, 3.0, 1.0);
    std::fill_n(potential.field(), 150 * potential.stride(), 0.0);
    potential.field()[70 * potential.stride() + 40] = 1.0;
    potential.solve();
    return {potential.field(), potential.field() + 150 * potential.stride()};
}

TEST(MeshPotential, IsLaidAnewAfterMemoryRanOut) {
    MeshPotential whole;
    const std::vector<double> expected = potential_of(whole);
    int failures = 0;
    for (long which = 0;; ++which) {
        MeshPotential potential;
        potential.lay(10, 10, 3.0, 1.0);
        failing = which;
        try {
            EXPECT_EQ(potential_of(potential), expected);
        } catch (const WorkMemoryError&) {
            ++failures;
        } catch (const std::bad_alloc&) {
            // The copy of the potential.
        }
        if (failing.exchange(-1) >= 0) {
            break;
        }
        EXPECT_EQ(potential_of(potential), expected) << which;
    }
    // The field, its spectrum, the influence.
    EXPECT_GE(failures, 3);
}

/// Allocations of a whole run.
long allocations_of_run(const std::string& matrix, double theta, int max_iter) {
    const long before = allocations;
    test::run_engine(matrix,
                     {.perplexity = 20.0,
                      .theta = theta,
                      .max_iter = max_iter,
                      .on_iteration = [](const IterationReport& /*reached*/) { return true; }});
    return allocations - before;
}

TEST(WholeRun, AllocatesPerIterationForItsMessageAlone) {
    const test::TemporaryDirectory directory;
    const std::string matrix = test::first_rows(directory, "brauer2008_chemostat.tsv", 150);
    constexpr int kFew = 20;
    constexpr int kMany = 220;
    // The texts that the message is joined from, and what grows with the captured output.
    constexpr long kPerIteration = 5;
    for (const double theta : {0.0, 0.5}) {
        allocations_of_run(matrix, theta, kFew);
        const long few = allocations_of_run(matrix, theta, kFew);
        const long many = allocations_of_run(matrix, theta, kMany);
        EXPECT_LE(many - few, kPerIteration * (kMany - kFew)) << theta;
        EXPECT_GE(many, few);
    }
}

}  // namespace
}  // namespace ovik
