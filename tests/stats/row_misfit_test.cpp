#include "stats/row_misfit.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "stats/exact_forces.h"
#include "stats/row_attraction.h"
#include "stats/sliced_attraction.h"

#include "tests/plain/plain_noise.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/sparse_rows.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 60;
constexpr std::size_t kColumns = 5;

std::vector<double> points() {
    return test::random_values(kRows * kColumns, 4);
}

std::vector<double> map_of(std::size_t dims) {
    return test::random_values(kRows * dims, 5, 3.0);
}

std::vector<double> similarity_sums(const std::vector<double>& Y, std::size_t dims) {
    std::vector<double> sums(Y.size() / dims);
    row_similarity_sums(Y.data(), sums.size(), dims, sums.data());
    return sums;
}

std::vector<double> joint_similarities() {
    std::vector<double> P = plain::conditional_similarities(points(), kRows, kColumns, 8.0);
    plain::symmetrise_and_normalise(P, kRows);
    return P;
}

/// All entries but those of the diagonal.
plain::SparseRows rows_of(const std::vector<double>& P) {
    plain::SparseRows rows(kRows);
    for (std::size_t i = 0; i < kRows; ++i) {
        for (std::size_t j = 0; j < kRows; ++j) {
            if (j != i) {
                rows[i].emplace_back(j, P[i * kRows + j]);
            }
        }
    }
    return rows;
}

std::vector<double> misfits_of(const std::vector<double>& P,
                               const std::vector<double>& Y,
                               std::size_t dims) {
    std::vector<double> misfits(kRows);
    exact_row_misfits(P.data(),
                      {Y.data(), kRows, dims},
                      similarity_sums(Y, dims).data(),
                      platform_elementary().log,
                      misfits.data());
    return misfits;
}

TEST(RowMisfits, OfAllPairsAreThoseOfThePlainProgram) {
    const std::vector<double> P = joint_similarities();
    for (const std::size_t dims : {1U, 2U, 3U}) {
        const std::vector<double> Y = map_of(dims);
        const std::vector<double> expected = plain::row_misfits(rows_of(P), Y, dims);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(misfits_of(P, Y, dims), expected) << threads;
        }
    }
}

TEST(RowMisfits, AlongNeighboursAreThoseOfThePlainProgram) {
    const plain::SparseRows rows =
        plain::symmetrise(plain::neighbour_similarities(points(), kRows, kColumns, 5.0, 15));
    test::SparseRows compressed{{0}, {}, {}};
    for (const auto& row : rows) {
        for (const auto& [column, p] : row) {
            compressed.col_P.push_back(static_cast<unsigned int>(column));
            compressed.val_P.push_back(p);
        }
        compressed.row_P.push_back(static_cast<unsigned int>(compressed.col_P.size()));
    }
    const std::vector<double> Y = map_of(2);
    const std::vector<double> expected = plain::row_misfits(rows, Y, 2);
    RowAttraction in_rows(compressed.view(), kRows, 2);
    SlicedAttraction in_slices(
        SlicedMatrix(compressed.view(), kRows, 2), 2, platform_elementary().log);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const std::vector<double> sums = similarity_sums(Y, 2);
        std::vector<double> misfits(kRows);
        in_rows.rowMisfits(Y.data(), sums.data(), misfits.data());
        EXPECT_EQ(misfits, expected) << threads;
        in_slices.rowMisfits(Y.data(), sums.data(), misfits.data());
        EXPECT_EQ(misfits, expected) << threads;
    }
}

TEST(RowMisfits, AddUpToTheCostWithTheDivergenceOfTheWeights) {
    const std::vector<double> P = joint_similarities();
    const std::vector<double> Y = map_of(2);
    const std::vector<double> misfits = misfits_of(P, Y, 2);
    const std::vector<double> sums = similarity_sums(Y, 2);
    const double Z = std::accumulate(sums.begin(), sums.end(), 0.0);
    double total = 0.0;
    for (std::size_t i = 0; i < kRows; ++i) {
        const double* const row = P.data() + i * kRows;
        const double weight = std::accumulate(row, row + kRows, 0.0);
        total += weight * misfits[i] + weight * std::log(weight / (sums[i] / Z));
    }
    EXPECT_NEAR(total, exact_cost(P.data(), {Y.data(), kRows, 2}), 1e-12);
    std::vector<double> costs(kRows);
    exact_row_costs(P.data(), Y.data(), kRows, 2, platform_elementary().log, costs.data());
    const double weight = std::accumulate(P.begin(), P.begin() + kRows, 0.0);
    EXPECT_NEAR(misfits[0], costs[0] / weight - std::log(weight / (sums[0] / Z)), 1e-12);
}

TEST(RowMisfits, AreNothingWhereTheMapIsAsTheData) {
    const std::vector<double> Y = map_of(2);
    std::vector<double> P(kRows * kRows);
    for (std::size_t i = 0; i < kRows; ++i) {
        for (std::size_t j = 0; j < kRows; ++j) {
            const double dx = Y[2 * i] - Y[2 * j];
            const double dy = Y[2 * i + 1] - Y[2 * j + 1];
            // Whatever the weight of the row.
            P[i * kRows + j] = static_cast<double>(1 + i) / (1.0 + dx * dx + dy * dy);
        }
    }
    for (const double misfit : misfits_of(P, Y, 2)) {
        EXPECT_NEAR(misfit, 0.0, 1e-13);
    }
    for (const double misfit : misfits_of(joint_similarities(), Y, 2)) {
        EXPECT_GT(misfit, 0.0);
    }
}

TEST(RowSimilaritySums, AreThoseOfAPlainLoopForAnyNumberOfThreads) {
    constexpr std::size_t kMany = 203;
    std::vector<double> Y = test::random_values(kMany * 2, 6, 3.0);
    // Farther than most kernels allow.
    Y[17] = 1e160;
    std::vector<double> expected;
    for (std::size_t i = 0; i < kMany; ++i) {
        double sum = 0.0;
        for (std::size_t j = 0; j < kMany; ++j) {
            const double dx = Y[2 * j] - Y[2 * i];
            const double dy = Y[2 * j + 1] - Y[2 * i + 1];
            sum += j == i ? 0.0 : 1.0 / (dx * dx + dy * dy + 1.0);
        }
        expected.push_back(sum);
    }
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(similarity_sums(Y, 2), expected) << threads;
    }
}

TEST(RowMisfits, DoNotDependOnTheScaleOfAffinitiesNorOnTheWeightOfARow) {
    std::vector<double> P = joint_similarities();
    const std::vector<double> Y = map_of(2);
    const std::vector<double> before = misfits_of(P, Y, 2);
    for (std::size_t at = 0; at < P.size(); ++at) {
        P[at] *= at < kRows ? 64.0 : 4.0;
    }
    EXPECT_EQ(misfits_of(P, Y, 2), before);
    std::vector<double> mirrored = Y;
    for (double& coordinate : mirrored) {
        coordinate = -coordinate;
    }
    EXPECT_EQ(misfits_of(P, mirrored, 2), before);
}

TEST(RowMisfits, OfARowWithoutAffinitiesAreNothing) {
    const test::SparseRows rows{{0, 2, 2, 3}, {1, 2, 0}, {0.25, 0.0, 0.125}};
    RowAttraction attraction(rows.view(), 3, 1);
    const std::vector<double> Y = {0.0, 1.0, 2.0};
    std::vector<double> misfits(3, 7.0);
    attraction.rowMisfits(Y.data(), similarity_sums(Y, 1).data(), misfits.data());
    EXPECT_EQ(misfits[1], 0.0);
    // All of the affinities of the first row are to one that has 0.5 of its 0.5 + 0.2.
    EXPECT_DOUBLE_EQ(misfits[0], std::log(0.7 / 0.5));
}

}  // namespace
}  // namespace ovik
