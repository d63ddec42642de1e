#include "stats/row_affinities.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/sparse_affinities.h"

#include "tests/plain/plain_affinities.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kCount = 250;
constexpr std::size_t kDims = 6;

plain::SparseRows rows_of(const SparseMatrix& matrix, std::size_t N) {
    plain::SparseRows rows(N);
    for (std::size_t n = 0; n < N; ++n) {
        for (unsigned int i = matrix.row_P[n]; i < matrix.row_P[n + 1]; ++i) {
            rows[n].emplace_back(matrix.col_P[i], matrix.val_P[i]);
        }
    }
    return rows;
}

/// The rows that neighbours and the engine's symmetric form come to, for several numbers of
/// threads.
void expect_rows(const std::vector<double>& points,
                 RowAffinities& affinities,
                 int K,
                 const plain::SparseRows& expected) {
    const std::size_t N = points.size() / kDims;
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const SparseMatrix matrix =
            conditional_affinities({points.data(), N, kDims}, affinities, K);
        EXPECT_EQ(rows_of(matrix, N), expected) << threads << " threads";
        EXPECT_EQ(rows_of(symmetrized(matrix.view(), N), N), plain::symmetrise(expected));
    }
}

TEST(UniformRows, EqualThePlainProgramBitForBit) {
    const std::vector<double> points = test::random_values(kCount * kDims, 6);
    UniformRows rows;
    expect_rows(points, rows, 15, plain::uniform_similarities(points, kCount, kDims, 15));
    expect_rows(points, rows, 249, plain::uniform_similarities(points, kCount, kDims, 249));
    expect_rows(points, rows, 1, plain::uniform_similarities(points, kCount, kDims, 1));
}

TEST(UniformRows, ShareAmongTheNeighboursThatThereAre) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> points = {0.0, 1.0, 3.0, nan};
    UniformRows rows;
    const plain::SparseRows found =
        rows_of(conditional_affinities({points.data(), 4, 1}, rows, 3), 4);
    EXPECT_EQ(found[0], (plain::SparseRows::value_type{{1, 0.5}, {2, 0.5}, {0, 0.0}}));
    // No distance to the last one is a number.
    EXPECT_EQ(found[3], (plain::SparseRows::value_type{{3, 0.0}, {3, 0.0}, {3, 0.0}}));
}

TEST(CalibratedRows, OfSeveralPerplexitiesEqualThePlainProgramBitForBit) {
    const std::vector<double> points = test::random_values(kCount * kDims, 7);
    CalibratedRows rows({{5.0, 15}, {30.5, 91}, {12.0, 36}}, platform_elementary());
    expect_rows(
        points, rows, 91, plain::multiscale_similarities(points, kCount, kDims, {5.0, 30.5, 12.0}));
}

TEST(CalibratedRows, OfEqualPerplexitiesAreThoseOfOne) {
    const std::vector<double> points = test::random_values(kCount * kDims, 8);
    CalibratedRows twice({{10.0, 30}, {10.0, 30}}, platform_elementary());
    expect_rows(points, twice, 30, plain::neighbour_similarities(points, kCount, kDims, 10.0, 30));
}

TEST(CalibratedRows, OfSeveralPerplexitiesSumToOne) {
    const std::vector<double> points = test::random_values(kCount * kDims, 9);
    CalibratedRows rows({{2.0, 6}, {50.0, 150}}, platform_elementary());
    for (const auto& row :
         rows_of(conditional_affinities({points.data(), kCount, kDims}, rows, 150), kCount)) {
        double sum = 0.0;
        for (const auto& entry : row) {
            sum += entry.second;
        }
        EXPECT_NEAR(sum, 1.0, 1e-12);
    }
}

TEST(CalibratedRows, AreTheSameOverCachedNeighbours) {
    const std::vector<double> points = test::random_values(kCount * kDims, 10);
    CachedNeighbours cached(60);
    for (const int K : {60, 24}) {
        CalibratedRows rows({{4.0, 12}, {K / 3.0, static_cast<std::size_t>(K)}},
                            platform_elementary());
        NeighbourHooks hooks;
        hooks.cached = &cached;
        EXPECT_EQ(
            rows_of(conditional_affinities({points.data(), kCount, kDims}, rows, K, hooks), kCount),
            plain::multiscale_similarities(points, kCount, kDims, {4.0, K / 3.0}));
    }
}

}  // namespace
}  // namespace ovik
