#include "stats/sparse_affinities.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "stats/tsne.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// The three blocks of a sparse matrix as the engine's members hand them out.
class Blocks {
  public:
    Blocks(const std::vector<double>& X, int N, int D, double perplexity, int K) : N_(N) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        TSNE<double>::computeGaussianPerplexity(
            X.data(), N, D, &row_P, &col_P, &val_P, perplexity, K);
        out = testing::internal::GetCapturedStdout();
        err = testing::internal::GetCapturedStderr();
    }

    /// A matrix given row by row.
    explicit Blocks(const plain::SparseRows& rows) : N_(static_cast<int>(rows.size())) {
        row_P = static_cast<unsigned int*>(std::calloc(rows.size() + 1, sizeof(unsigned int)));
        std::size_t entries = 0;
        for (std::size_t n = 0; n < rows.size(); ++n) {
            entries += rows[n].size();
            row_P[n + 1] = static_cast<unsigned int>(entries);
        }
        col_P = static_cast<unsigned int*>(std::calloc(entries + 1, sizeof(unsigned int)));
        val_P = static_cast<double*>(std::calloc(entries + 1, sizeof(double)));
        std::size_t i = 0;
        for (const auto& row : rows) {
            for (const auto& [column, value] : row) {
                col_P[i] = static_cast<unsigned int>(column);
                val_P[i] = value;
                ++i;
            }
        }
    }

    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    ~Blocks() {
        std::free(row_P);
        std::free(col_P);
        std::free(val_P);
    }

    void symmetrise() { TSNE<double>::symmetrizeMatrix(&row_P, &col_P, &val_P, N_); }

    [[nodiscard]] plain::SparseRows rows() const {
        plain::SparseRows rows(static_cast<std::size_t>(N_));
        for (std::size_t n = 0; n < rows.size(); ++n) {
            for (std::size_t i = row_P[n]; i < row_P[n + 1]; ++i) {
                rows[n].emplace_back(col_P[i], val_P[i]);
            }
        }
        return rows;
    }

    unsigned int* row_P = nullptr;
    unsigned int* col_P = nullptr;
    double* val_P = nullptr;
    std::string out;
    std::string err;

  private:
    int N_;
};

TEST(NeighbourAffinities, EqualThePlainProgramBitForBit) {
    constexpr int kCount = 250;
    const std::vector<double> points = test::random_values(kCount * 6, 6);
    const auto conditional = plain::neighbour_similarities(points, kCount, 6, 12.5, 37);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        Blocks blocks(points, kCount, 6, 12.5, 37);
        EXPECT_EQ(blocks.rows(), conditional);
        blocks.symmetrise();
        EXPECT_EQ(blocks.rows(), plain::symmetrise(conditional));
    }
}

TEST(NeighbourAffinities, SayThatTheTreeIsBuilt) {
    const Blocks blocks(test::random_values(40, 6), 20, 2, 3.0, 9);
    EXPECT_EQ(blocks.out, "-- Building tree ...\n");
    EXPECT_EQ(blocks.err, "");
}

TEST(NeighbourAffinities, WarnOfAPerplexityAboveKAndGoOn) {
    const Blocks blocks(test::random_values(40, 6), 20, 2, 5.5, 5);
    EXPECT_EQ(blocks.err, "Perplexity should be lower than K!\n");
    EXPECT_EQ(blocks.row_P[20], 100U);
    const Blocks equal(test::random_values(40, 6), 20, 2, 5.0, 5);
    EXPECT_EQ(equal.err, "");
}

TEST(NeighbourAffinities, AreEmptyForNoNeighbours) {
    const Blocks blocks(test::random_values(40, 6), 20, 2, 0.1, 0);
    EXPECT_EQ(blocks.rows(), plain::SparseRows(20));
}

TEST(NeighbourAffinities, OfOnePointAreEmpty) {
    const Blocks blocks({1.0, 2.0}, 1, 2, 0.1, 0);
    EXPECT_EQ(blocks.rows(), plain::SparseRows(1));
}

TEST(NeighbourAffinities, SkipTheFirstResultAlsoWhenItIsADuplicate) {
    // The three at the same place get the same results in the same order. The first is skipped by
    // all of them, so that two of them are listed among their own neighbours.
    const std::vector<double> points = {1.0, 1.0, 1.0, 5.0, 6.0};
    const Blocks blocks(points, 5, 1, 1.5, 3);
    const auto rows = blocks.rows();
    int own_neighbours = 0;
    for (std::size_t n = 0; n < 3; ++n) {
        ASSERT_EQ(rows[n].size(), 3U);
        EXPECT_EQ(rows[n], rows[0]);
        for (const auto& entry : rows[n]) {
            own_neighbours += entry.first == n ? 1 : 0;
        }
    }
    EXPECT_EQ(own_neighbours, 2);
}

TEST(NeighbourAffinities, TakeTheNeighboursThatThereAreWhenKIsNotBelowN) {
    const std::vector<double> points = {0.0, 1.0, 3.0};
    const Blocks blocks(points, 3, 1, 1.5, 5);
    const auto expected = plain::neighbour_similarities(points, 3, 1, 1.5, 2);
    const auto rows = blocks.rows();
    for (std::size_t n = 0; n < 3; ++n) {
        ASSERT_EQ(rows[n].size(), 5U);
        EXPECT_EQ(rows[n][0], expected[n][0]);
        EXPECT_EQ(rows[n][1], expected[n][1]);
        for (std::size_t m = 2; m < 5; ++m) {
            EXPECT_EQ(rows[n][m], (std::pair<std::size_t, double>(n, 0.0)));
        }
    }
}

TEST(NeighbourAffinities, AreZeroWithoutFiniteDistances) {
    const std::vector<double> points(10, std::nan(""));
    Blocks blocks(points, 5, 2, 1.0, 3);
    for (std::size_t i = 0; i < 15; ++i) {
        EXPECT_EQ(blocks.val_P[i], 0.0);
    }
    blocks.symmetrise();
    EXPECT_EQ(blocks.row_P[5], 15U);
}

TEST(NeighbourAffinities, RefuseMoreEntriesThanRowStartsCanCount) {
    const std::vector<double> points(3, 1.0);
    EXPECT_THROW(neighbour_affinities(points.data(), 3, 1, 30.0, 2147483647), std::length_error);
}

TEST(Symmetrized, HalvesTheSumOfBothDirectionsAndOneSidedEntries) {
    Blocks blocks({{{1, 0.5}, {2, 0.25}}, {{0, 0.125}}, {}});
    blocks.symmetrise();
    EXPECT_EQ(blocks.rows(),
              (plain::SparseRows{{{1, 0.3125}, {2, 0.125}}, {{0, 0.3125}}, {{0, 0.125}}}));
}

TEST(Symmetrized, KeepsTheValueOfASelfEntryInOneSlot) {
    Blocks blocks({{{0, 0.75}, {1, 0.5}}, {{1, 0.25}}});
    blocks.symmetrise();
    EXPECT_EQ(blocks.rows(), (plain::SparseRows{{{0, 0.75}, {1, 0.25}}, {{0, 0.25}, {1, 0.25}}}));
}

TEST(Symmetrized, EqualsThePlainProgramForAnyNumberOfThreads) {
    // Enough rows for every thread to count some; one column that all rows point at.
    constexpr std::size_t kCount = 5000;
    plain::SparseRows conditional(kCount);
    for (std::size_t n = 0; n < kCount; ++n) {
        conditional[n].emplace_back(77, 0.5 / static_cast<double>(n + 1));
        for (std::size_t step = 1; step < 9; ++step) {
            const std::size_t column = (n + step * step * 31) % kCount;
            if (column != 77) {
                conditional[n].emplace_back(column, 1.0 / static_cast<double>(n * step + 3));
            }
            if (step < 5 && column != 77) {
                conditional[column].emplace_back(n, 1.0 / static_cast<double>(n + step));
            }
        }
    }
    for (auto& row : conditional) {
        std::vector<bool> is_taken(kCount, false);
        plain::SparseRows::value_type distinct;
        for (const auto& entry : row) {
            if (!is_taken[entry.first]) {
                distinct.push_back(entry);
            }
            is_taken[entry.first] = true;
        }
        row = distinct;
    }
    const plain::SparseRows expected = plain::symmetrise(conditional);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        Blocks blocks(conditional);
        blocks.symmetrise();
        EXPECT_TRUE(blocks.rows() == expected) << threads << " threads";
    }
}

RC_GTEST_PROP(Symmetrized, EqualsThePlainProgramOnAnyRows, ()) {
    const auto count = *rc::gen::inRange<std::size_t>(1, 25);
    plain::SparseRows conditional(count);
    for (auto& row : conditional) {
        const auto values = *rc::gen::container<std::vector<int>>(count, rc::gen::inRange(-9, 9));
        for (std::size_t step = 0; step < count; ++step) {
            // Columns in an order that is not theirs; about half of them are stored.
            const std::size_t column = (step * 7 + 3) % count;
            if (values[step] > 0 && std::none_of(row.begin(), row.end(), [=](const auto& entry) {
                    return entry.first == column;
                })) {
                row.emplace_back(column, values[step] / 10.0);
            }
        }
    }
    Blocks blocks(conditional);
    blocks.symmetrise();
    const auto actual = blocks.rows();
    RC_ASSERT(actual == plain::symmetrise(conditional));
    std::map<std::pair<std::size_t, std::size_t>, double> entries;
    for (std::size_t n = 0; n < count; ++n) {
        for (const auto& [column, value] : actual[n]) {
            entries[{n, column}] = value;
        }
    }
    for (const auto& [place, value] : entries) {
        const std::pair mirror(place.second, place.first);
        RC_ASSERT(entries[mirror] == value);
    }
}

}  // namespace
}  // namespace ovik
